#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "RegisterRanges.h"
#include "gateway/capture/Capture.h"
#include "gateway/modbus/RegisterProbe.h"
#include "gateway/modbus/RequestLimits.h"

namespace kzm::ModbusTool {

// What probing has found out of the registers that one function code reads, from a capture and from the device.
class ProbeResult {
public:
    explicit ProbeResult(ModbusDeviceModel::ModbusFunctionCode functionCode)
        : mFunctionCode(functionCode), mMost(ModbusGateway::MaxReadCount(functionCode)) {}

    // What an earlier probe wrote.
    void Take(const ModbusGateway::Capture& capture);
    // What a probe knows from `first` on; it replaces what is known of these registers.
    void Take(const ModbusGateway::RegisterProbe& probe, std::uint16_t first);
    void TellTo(ModbusGateway::RegisterProbe& probe) const;

    // The most registers of a request as far as the capture tells it: a frame that another one goes on after is as long
    // as the device allowed. Otherwise what the protocol allows.
    std::uint16_t GetMost() const { return mMost; }

    // Whether any register answers.
    bool HasRegisters() const;
    // Registers side by side of which the same is known, as a table.
    void Print() const;
    // How many are taken for missing although they were not asked for one by one.
    std::size_t CountNotAsked() const;
    // The frames that read all that answers, with at most `most` registers each. Throws std::invalid_argument for more
    // than a device can have.
    ModbusGateway::DeviceFrames GetFrames(std::uint16_t most) const;
    // One snapshot of all that answers, and what is missing.
    ModbusGateway::Capture MakeCapture(const ModbusGateway::DeviceFrames& frames) const;

private:
    using Register = ModbusGateway::RegisterProbe::Register;
    // Registers side by side that answer, or that are missing for one reason.
    struct Run {
        RegisterRange range;
        Register what;
        std::size_t notAsked;  // of those that are missing
    };
    static bool Continues(const Run& run, const Register& what);

    std::vector<Run> GetRuns() const;
    void TakeFrame(const ModbusDeviceModel::DeviceProfile::FrameData& frame, const std::vector<std::uint16_t>& words);

    ModbusDeviceModel::ModbusFunctionCode mFunctionCode;
    std::uint16_t mMost;
    std::uint16_t mLastCount = 0;                  // of the frame that was taken last
    std::map<std::uint16_t, Register> mRegisters;  // but those that are not known
};

}  // namespace kzm::ModbusTool
