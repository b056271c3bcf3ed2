#include "gateway/modbus/ModbusConnection.h"

#include <modbus/modbus.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "gateway/modbus/Line.h"
#include "gateway/modbus/Log.h"
#include "gateway/modbus/RequestLimits.h"
#include "gateway/modbus/Requests.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;

namespace Logging = ModbusDeviceModel::Logging;

namespace {

constexpr const char* LOG_MODULE = "ModbusConnection";

constexpr int LAST_UNIT = 247;
constexpr int TCP_DEVICE = 255;

bool IsException(int error) {
    return (error > MODBUS_ENOBASE && error <= EMBXGTAR) || error == EMBBADEXC;
}

// The exception's number; 0 for one that the protocol does not define.
std::uint8_t NumberOf(int exception) {
    return exception <= EMBXGTAR ? static_cast<std::uint8_t>(exception - MODBUS_ENOBASE) : std::uint8_t{0};
}

bool IsUnit(const ModbusSettings& settings) {
    return settings.unit <= LAST_UNIT ||
           (settings.unit == TCP_DEVICE && std::holds_alternative<TcpEndpoint>(settings.line));
}

ModbusConnection::Result TooMany(const char* action, std::size_t count, std::size_t most) {
    return {ModbusConnection::Outcome::EXCEPTION, "one request " + std::string(action) + " 1 to " +
                                                      std::to_string(most) + " registers, not " +
                                                      std::to_string(count)};
}

}  // namespace

ModbusConnection::ModbusConnection(ModbusSettings settings, const std::atomic<bool>* stop)
    : mSettings(std::move(settings)),
      mStop(stop),
      mLine(std::visit([](const auto& line) { return MakeLine(line); }, mSettings.line)),
      mPause(mSettings.firstPause) {
    if (!IsUnit(mSettings)) {
        throw std::invalid_argument("no such unit");
    }
}

ModbusConnection::~ModbusConnection() = default;

std::string ModbusConnection::GetName() const {
    return mLine->GetName();
}

ModbusConnection::Result ModbusConnection::Read(ModbusFunctionCode functionCode, std::uint16_t first,
                                                std::uint16_t count, std::uint16_t* values) {
    if (count == 0 || count > MaxReadCount(functionCode)) {
        return TooMany("reads", count, MaxReadCount(functionCode));
    }
    const Bytes request = ReadRequest(functionCode, first, count);
    const auto take = [&](const Bytes& answer) { return TakeValues(request, answer, values); };
    const bool wasUsed = mUsed;
    Result result = Ask(request, take);
    if (result.outcome == Outcome::LOST && wasUsed) {
        result = Ask(request, take);
    }
    return result;
}

ModbusConnection::Result ModbusConnection::Write(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values) {
    if (values.mValues.empty() || values.mValues.size() > MAX_WRITE_COUNT) {
        return TooMany("writes", values.mValues.size(), MAX_WRITE_COUNT);
    }
    const Bytes request = WriteRequest(values);
    return Ask(request, [&](const Bytes& answer) { return TakeConfirmation(request, answer); });
}

ModbusConnection::Result ModbusConnection::Ask(const Bytes& request,
                                               const std::function<int(const Bytes& answer)>& take) {
    int error = Open();
    if (error != 0) {
        return {error == ECANCELED ? Outcome::STOPPED : Outcome::UNREACHABLE, TextOf(error)};
    }
    error = Exchange(request, take);
    if (error == 0 || IsException(error)) {
        NoteAnswer();
        return error == 0 ? Result{Outcome::ANSWERED, {}} : Result{Outcome::EXCEPTION, TextOf(error), NumberOf(error)};
    }
    mLine->Recover(error, mSettings.timeout, mStop);
    mUsed = mUsed && mLine->IsOpen();
    if (error == ECANCELED) {
        return {Outcome::STOPPED, TextOf(error)};
    }
    return {IsLost(error) ? Outcome::LOST : Outcome::NO_ANSWER, TextOf(error)};
}

int ModbusConnection::Exchange(const Bytes& request, const std::function<int(const Bytes& answer)>& take) {
    Bytes answer;
    const int error = mLine->Ask(mSettings.unit, request, {Clock::now() + mSettings.timeout, mStop}, answer);
    return error != 0 ? error : take(answer);
}

int ModbusConnection::Open() {
    if (mLine->IsOpen()) {
        return 0;
    }
    if (Clock::now() < mNextAttempt) {
        return mUnreachable;
    }
    const int error = mLine->Open(mSettings.timeout, mStop);
    if (error == 0) {
        mPause = mSettings.firstPause;
    } else if (error != ECANCELED) {
        NoteUnreachable(error);
    }
    return error;
}

void ModbusConnection::NoteUnreachable(int error) {
    mNextAttempt = Clock::now() + mPause;
    mPause = std::min(mPause * 2, mSettings.longestPause);
    if (std::exchange(mUnreachable, error) == 0) {
        LogLine(Logging::WARNING, LOG_MODULE,
                [&] { return "[Read] " + GetName() + " cannot be reached: " + TextOf(error); });
    }
}

void ModbusConnection::NoteAnswer() {
    mUsed = true;
    if (std::exchange(mUnreachable, 0) != 0) {
        LogLine(Logging::INFORMATION, LOG_MODULE, [&] { return "[Read] " + GetName() + " answers again"; });
    }
}

}  // namespace kzm::ModbusGateway
