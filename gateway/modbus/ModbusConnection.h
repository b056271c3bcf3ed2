#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/FrameDataValue.h"
#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"
#include "gateway/modbus/ModbusSettings.h"

namespace kzm::ModbusGateway {

class Line;

// The connection to one device, over Modbus TCP or RTU: opened when it is first needed, and again after it was lost.
// Logs a warning when the device can no longer be reached, and an information when it answers again. Used by one
// thread.
class ModbusConnection {
public:
    // How a request ended.
    enum class Outcome {
        ANSWERED,
        EXCEPTION,    // the device refused, or no request may ask for so many registers
        LOST,         // the connection broke before an answer came
        NO_ANSWER,    // none in time, or none that fits the request
        UNREACHABLE,  // not connected: the attempt failed, or the pause before the next one lasts
        STOPPED,      // the caller's flag became true while this waited
    };

    // How a request ended, and why.
    struct Result {
        Outcome outcome;             // of the last attempt
        std::string reason;          // for the user, e.g. "Connection timed out"; empty when answered
        std::uint8_t exception = 0;  // the number that the device answered with; 0 if it did not
    };

    // Opens nothing yet. Once `stop` is true, whatever waits gives up within 50 ms; it must outlive the connection,
    // null: nothing ends the waiting early. Throws std::invalid_argument for settings that cannot be: an empty host or
    // device, a unit, a baud rate or a parity that does not exist.
    KZM_GATEWAY_EXPORT explicit ModbusConnection(ModbusSettings settings, const std::atomic<bool>* stop = nullptr);
    KZM_GATEWAY_EXPORT ~ModbusConnection();
    ModbusConnection(const ModbusConnection&) = delete;
    ModbusConnection& operator=(const ModbusConnection&) = delete;

    // Reads 1 to MaxReadCount(functionCode) registers from `first` on; a coil or discrete input is a register of 0
    // or 1. `values` has room for `count` registers, holds them when answered, and stays as it was otherwise. A
    // connection that was in use and turns out to be closed is opened again and asked once more, because many devices
    // close one that was idle. An answer to another request is ignored (TCP).
    KZM_GATEWAY_EXPORT Result Read(ModbusDeviceModel::ModbusFunctionCode functionCode, std::uint16_t first,
                                   std::uint16_t count, std::uint16_t* values);

    // Writes 1 to 123 registers with function code 16, in one request that is never repeated: without an answer
    // (LOST, NO_ANSWER, STOPPED) it is not known whether the device did what it was told.
    KZM_GATEWAY_EXPORT Result Write(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values);

    // What is connected to, as logged: "192.0.2.1:502" or "/dev/ttyUSB0".
    KZM_GATEWAY_EXPORT std::string GetName() const;

private:
    using Bytes = std::vector<std::uint8_t>;
    using Clock = std::chrono::steady_clock;

    // `take` gets the answer, and returns 0 or why it is none.
    Result Ask(const Bytes& request, const std::function<int(const Bytes& answer)>& take);
    int Open();
    int Exchange(const Bytes& request, const std::function<int(const Bytes& answer)>& take);
    void NoteUnreachable(int error);
    void NoteAnswer();

    ModbusSettings mSettings;
    const std::atomic<bool>* mStop;
    std::unique_ptr<Line> mLine;
    bool mUsed = false;  // the open connection has carried an answer
    std::chrono::milliseconds mPause;
    Clock::time_point mNextAttempt = Clock::time_point::min();
    int mUnreachable = 0;  // why the last attempt failed; 0 as soon as the device answers
};

}  // namespace kzm::ModbusGateway
