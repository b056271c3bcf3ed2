#include "gateway/modbus/ModbusConnection.h"

#include <modbus/modbus.h>
#include <netdb.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

#include "Support/Log.h"

#define LOG_MODULE "ModbusConnection"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;
using std::chrono::milliseconds;

namespace {

// Silence after which a serial line is taken to be idle: well above the protocol's 3.5 characters and the latency of
// USB adapters.
constexpr milliseconds LINE_SILENCE{50};

// Those that libmodbus sets; it would silently take 9600 for any other.
constexpr std::array BAUD_RATES{110,     300,     600,     1200,    2400,    4800,    9600,   19200,
                                38400,   57600,   115200,  230400,  460800,  500000,  576000, 921600,
                                1000000, 1152000, 1500000, 2500000, 3000000, 3500000, 4000000};

// Null with errno for a connection that cannot be. libmodbus itself prints a line for an empty name.
modbus_t* NewContext(const TcpEndpoint& endpoint) {
    if (endpoint.host.empty()) {
        errno = EINVAL;
        return nullptr;
    }
    return modbus_new_tcp_pi(endpoint.host.c_str(), std::to_string(endpoint.port).c_str());
}

modbus_t* NewContext(const SerialPort& line) {
    if (line.device.empty() || std::ranges::find(BAUD_RATES, line.baud) == BAUD_RATES.end()) {
        errno = EINVAL;
        return nullptr;
    }
    return modbus_new_rtu(line.device.c_str(), line.baud, line.parity, 8, line.parity == 'N' ? 2 : 1);
}

std::string NameOf(const TcpEndpoint& endpoint) {
    return endpoint.host + ":" + std::to_string(endpoint.port);
}
std::string NameOf(const SerialPort& line) {
    return line.device;
}

// Why a connection could not be made. libmodbus calls an unknown host a refused connection.
std::string ReasonOf(const TcpEndpoint& endpoint, int error) {
    addrinfo* addresses = nullptr;
    const int resolved = error == ECONNREFUSED ? getaddrinfo(endpoint.host.c_str(), nullptr, nullptr, &addresses) : 0;
    if (addresses != nullptr) {
        freeaddrinfo(addresses);
    }
    return resolved == 0 ? modbus_strerror(error) : gai_strerror(resolved);
}
std::string ReasonOf(const SerialPort&, int error) {
    return modbus_strerror(error);
}

bool IsException(int error) {
    return (error >= MODBUS_ENOBASE && error <= EMBXGTAR) || error == EMBBADEXC;
}

// Errors of the line itself, as against those of libmodbus and no answer in time.
bool IsLost(int error) {
    return error < MODBUS_ENOBASE && error != ETIMEDOUT;
}

using ReadBitsFunction = int (*)(modbus_t*, int, int, std::uint8_t*);

int ReadBits(ReadBitsFunction read, modbus_t* context, int first, int count, std::uint16_t* values) {
    std::array<std::uint8_t, MODBUS_MAX_READ_BITS> bits;
    const int received = read(context, first, count, bits.data());
    if (received == count) {
        std::copy_n(bits.begin(), count, values);
    }
    return received;
}

int ReadRegisters(modbus_t* context, ModbusFunctionCode functionCode, int first, int count, std::uint16_t* values) {
    switch (functionCode) {
        case ModbusFunctionCode::READ_COILS:
            return ReadBits(modbus_read_bits, context, first, count, values);
        case ModbusFunctionCode::READ_DISCRETE_INPUTS:
            return ReadBits(modbus_read_input_bits, context, first, count, values);
        case ModbusFunctionCode::READ_HOLDING_REGISTERS:
            return modbus_read_registers(context, first, count, values);
        case ModbusFunctionCode::READ_INPUT_REGISTERS:
            return modbus_read_input_registers(context, first, count, values);
        case ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS:
            break;
    }
    errno = EMBXILFUN;
    return -1;
}

}  // namespace

void ModbusConnection::ContextDeleter::operator()(modbus_t* context) const {
    modbus_free(context);
}

ModbusConnection::ModbusConnection(ModbusSettings connection)
    : mConnection(std::move(connection)),
      mContext(std::visit([](const auto& line) { return NewContext(line); }, mConnection.line)),
      mPause(mConnection.firstPause) {
    if (mContext == nullptr && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    if (mContext == nullptr || modbus_set_slave(mContext.get(), mConnection.unit) != 0) {
        throw std::invalid_argument("no such Modbus connection");
    }
    mConnection.timeout = std::max(mConnection.timeout, milliseconds(1));
    const auto seconds = static_cast<std::uint32_t>(mConnection.timeout.count() / 1000);
    const auto microseconds = static_cast<std::uint32_t>(mConnection.timeout.count() % 1000 * 1000);
    modbus_set_response_timeout(mContext.get(), seconds, microseconds);
    // Else each byte of an answer could take a time-out of its own.
    modbus_set_byte_timeout(mContext.get(), 0, 0);
}

ModbusConnection::~ModbusConnection() {
    Close();
}

ModbusConnection::Result ModbusConnection::Read(ModbusFunctionCode functionCode, std::uint16_t first,
                                                std::uint16_t count, std::uint16_t* values) {
    const bool wasUsed = mUsed;
    const auto request = [&](modbus_t* context) {
        return ReadRegisters(context, functionCode, first, count, values) == count;
    };
    Result result = Ask(request);
    if (result.outcome == Outcome::LOST && wasUsed) {
        result = Ask(request);
    }
    return result;
}

ModbusConnection::Result ModbusConnection::Write(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values) {
    const auto count = static_cast<int>(values.mValues.size());
    return Ask([&](modbus_t* context) {
        return modbus_write_registers(context, values.mStartAddress, count, values.mValues.data()) == count;
    });
}

ModbusConnection::Result ModbusConnection::Ask(const std::function<bool(modbus_t*)>& request) {
    if (!Open()) {
        return {Outcome::UNREACHABLE, mUnreachableReason};
    }
    if (request(mContext.get())) {
        NoteAnswer();
        return {Outcome::ANSWERED, {}};
    }
    const int error = errno;
    if (IsException(error)) {
        NoteAnswer();
        return {Outcome::EXCEPTION, modbus_strerror(error)};
    }
    Recover(error);
    return {IsLost(error) ? Outcome::LOST : Outcome::NO_ANSWER, modbus_strerror(error)};
}

bool ModbusConnection::Open() {
    if (mOpen || Clock::now() < mNextAttempt) {
        return mOpen;
    }
    mOpen = modbus_connect(mContext.get()) == 0;
    if (mOpen) {
        mPause = mConnection.firstPause;
    } else {
        NoteUnreachable(errno);
        mNextAttempt = Clock::now() + mPause;
        mPause = mPause < mConnection.longestPause / 2 ? mPause * 2 : mConnection.longestPause;
    }
    return mOpen;
}

void ModbusConnection::Close() {
    if (mOpen) {
        modbus_close(mContext.get());
        mOpen = mUsed = false;
    }
}

void ModbusConnection::NoteAnswer() {
    mUsed = true;
    if (!mUnreachableReason.empty()) {
        mUnreachableReason.clear();
        const std::string name = std::visit([](const auto& line) { return NameOf(line); }, mConnection.line);
        KZM_LOG(INFORMATION, "[Read] %s answers again", name.c_str());
    }
}

void ModbusConnection::NoteUnreachable(int error) {
    const bool isNew = mUnreachableReason.empty();
    mUnreachableReason = std::visit([error](const auto& line) { return ReasonOf(line, error); }, mConnection.line);
    if (isNew) {
        const std::string name = std::visit([](const auto& line) { return NameOf(line); }, mConnection.line);
        KZM_LOG(WARNING, "[Read] %s cannot be reached: %s", name.c_str(), mUnreachableReason.c_str());
    }
}

// Makes sure that nothing which still comes for a failed request is taken for the answer to the next one.
void ModbusConnection::Recover(int error) {
    if (std::holds_alternative<TcpEndpoint>(mConnection.line) || IsLost(error)) {
        Close();
    } else {
        LetLateAnswerPass(error == ETIMEDOUT ? mConnection.timeout : LINE_SILENCE);
    }
}

// Answers on a serial line do not tell which request they belong to.
void ModbusConnection::LetLateAnswerPass(milliseconds wait) {
    const auto end = Clock::now() + mConnection.timeout + LINE_SILENCE;
    pollfd line{modbus_get_socket(mContext.get()), POLLIN, 0};
    while (Clock::now() < end && poll(&line, 1, static_cast<int>(wait.count())) > 0 && (line.revents & POLLIN) != 0) {
        modbus_flush(mContext.get());
        wait = LINE_SILENCE;
    }
}

}  // namespace kzm::ModbusGateway
