#include <modbus/modbus.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

#include "gateway/modbus/Line.h"
#include "gateway/modbus/RtuMessage.h"

namespace kzm::ModbusGateway {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

// Silence after which a serial line is taken to be idle: well above the protocol's 3.5 characters and the latency of
// USB adapters.
constexpr milliseconds LINE_SILENCE{50};

// The rates that libmodbus sets; it silently takes 9600 for any other.
constexpr std::array BAUD_RATES{110,     300,     600,     1200,    2400,    4800,    9600,   19200,
                                38400,   57600,   115200,  230400,  460800,  500000,  576000, 921600,
                                1000000, 1152000, 1500000, 2500000, 3000000, 3500000, 4000000};

struct FreeContext {
    void operator()(modbus_t* context) const { modbus_free(context); }
};
using Context = std::unique_ptr<modbus_t, FreeContext>;

// libmodbus opens the port and sets it up.
class RtuLine final : public Line {
public:
    RtuLine(std::string name, Context context) : mName(std::move(name)), mContext(std::move(context)) {}
    ~RtuLine() override { Close(); }
    RtuLine(const RtuLine&) = delete;
    RtuLine& operator=(const RtuLine&) = delete;

    std::string GetName() const override { return mName; }

    bool IsOpen() const override { return mOpen; }
    int Open(milliseconds, const std::atomic<bool>*) override {
        mOpen = modbus_connect(mContext.get()) == 0;
        return mOpen ? 0 : errno;
    }
    void Close() override {
        if (mOpen) {
            modbus_close(mContext.get());
            mOpen = false;
        }
    }

    int Ask(std::uint8_t unit, const Bytes& request, const Patience& patience, Bytes& answer) override;
    void Recover(int error, milliseconds timeout, const std::atomic<bool>* stop) override;

private:
    int GetDescriptor() const { return modbus_get_socket(mContext.get()); }
    int Receive(Bytes& message, const Patience& patience);

    std::string mName;
    Context mContext;
    bool mOpen = false;
};

int RtuLine::Ask(std::uint8_t unit, const Bytes& request, const Patience& patience, Bytes& answer) {
    Bytes message;
    int error = SendAll(GetDescriptor(), RtuMessage::Make(unit, request), patience);
    if (error == 0) {
        error = Receive(message, patience);
    }
    if (error != 0) {
        return error;
    }
    answer.assign(message.begin() + RtuMessage::HEADER_SIZE, message.end() - RtuMessage::CHECKSUM_SIZE);
    return message[0] == unit ? 0 : EMBBADSLAVE;
}

int RtuLine::Receive(Bytes& message, const Patience& patience) {
    if (const int error = ReceiveUpTo(RtuMessage::SIZE_END, GetDescriptor(), message, patience)) {
        return error;
    }
    const std::size_t size = RtuMessage::SizeOfAnswer(message);
    if (size == 0) {
        return EMBBADDATA;
    }
    if (const int error = ReceiveUpTo(size, GetDescriptor(), message, patience)) {
        return error;
    }
    return RtuMessage::HasGoodChecksum(message) ? 0 : EMBBADCRC;
}

// Answers on a serial line do not tell which request they belong to: what comes late is read until the line is silent.
void RtuLine::Recover(int error, milliseconds timeout, const std::atomic<bool>* stop) {
    if (IsLost(error)) {
        return Close();
    }
    const auto end = Clock::now() + timeout + LINE_SILENCE;
    milliseconds wait = error == ETIMEDOUT ? timeout : LINE_SILENCE;
    while (WaitFor(GetDescriptor(), POLLIN, {std::min(end, Clock::now() + wait), stop}) == 0) {
        if (modbus_flush(mContext.get()) != 0) {
            return Close();
        }
        wait = LINE_SILENCE;
    }
}

}  // namespace

std::unique_ptr<Line> MakeLine(const SerialPort& port) {
    if (port.device.empty() || std::ranges::find(BAUD_RATES, port.baud) == BAUD_RATES.end()) {
        throw std::invalid_argument("no such serial device or baud rate");
    }
    const int stopBits = port.parity == 'N' ? 2 : 1;
    Context context(modbus_new_rtu(port.device.c_str(), port.baud, port.parity, 8, stopBits));
    if (!context && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    if (!context) {
        throw std::invalid_argument("no such parity");
    }
    return std::make_unique<RtuLine>(port.device, std::move(context));
}

}  // namespace kzm::ModbusGateway
