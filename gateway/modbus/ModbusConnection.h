#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "DeviceProfile/FrameDataValue.h"
#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"
#include "gateway/modbus/ModbusSettings.h"

typedef struct _modbus modbus_t;  // of libmodbus, whose header users of this one do not need

namespace kzm::ModbusGateway {

// The line to one device: opened when it is first needed, and again after it was lost. Logs one warning when the device
// can no longer be reached, and one line when it answers again. Used by one thread.
class ModbusConnection {
public:
    enum class Outcome {
        ANSWERED,
        EXCEPTION,    // the device answered that it will not
        LOST,         // the connection broke before an answer came
        NO_ANSWER,    // none in time, or none that fits the request
        UNREACHABLE,  // there is no connection and none could be made, or the pause before the next attempt lasts
    };
    struct Result {
        Outcome outcome;
        std::string reason;  // empty when answered
    };

    // Opens nothing yet. Throws std::invalid_argument for a connection that cannot be: an empty host or device, a unit,
    // a baud rate or a parity that does not exist.
    KZM_GATEWAY_EXPORT explicit ModbusConnection(ModbusSettings connection);
    KZM_GATEWAY_EXPORT ~ModbusConnection();
    ModbusConnection(const ModbusConnection&) = delete;
    ModbusConnection& operator=(const ModbusConnection&) = delete;

    // Asks for 1 to MaxReadCount(functionCode) registers; a coil or discrete input is a register of 0 or 1. `values`
    // holds them when answered, and anything else otherwise. A connection that was in use and turns out to be closed is
    // opened again and asked once more, because many devices close one that was idle.
    KZM_GATEWAY_EXPORT Result Read(ModbusDeviceModel::ModbusFunctionCode functionCode, std::uint16_t first,
                                   std::uint16_t count, std::uint16_t* values);

    // Writes 1 to 123 registers with function 16, in one request that is never repeated: without an answer
    // it is not known whether the device did what it was told.
    KZM_GATEWAY_EXPORT Result Write(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values);

private:
    struct ContextDeleter {
        void operator()(modbus_t* context) const;
    };
    using Clock = std::chrono::steady_clock;

    // `request` tells whether the answer came, or leaves why not in errno.
    Result Ask(const std::function<bool(modbus_t*)>& request);
    bool Open();
    void Close();
    void NoteAnswer();
    void NoteUnreachable(int error);
    void Recover(int error);
    void LetLateAnswerPass(std::chrono::milliseconds wait);

    ModbusSettings mConnection;
    std::unique_ptr<modbus_t, ContextDeleter> mContext;
    bool mOpen = false;
    bool mUsed = false;  // the open connection has carried an answer
    std::chrono::milliseconds mPause;
    Clock::time_point mNextAttempt = Clock::time_point::min();
    std::string mUnreachableReason;  // empty as soon as the device answers
};

}  // namespace kzm::ModbusGateway
