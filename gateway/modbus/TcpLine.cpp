#include <modbus/modbus.h>

#include <stdexcept>
#include <utility>

#include "gateway/modbus/Line.h"
#include "gateway/modbus/Socket.h"

namespace kzm::ModbusGateway {

using std::chrono::milliseconds;

namespace {

class TcpLine final : public Line {
public:
    explicit TcpLine(TcpEndpoint endpoint) : mEndpoint(std::move(endpoint)) {}

    std::string GetName() const override { return mEndpoint.host + ":" + std::to_string(mEndpoint.port); }

    bool IsOpen() const override { return static_cast<bool>(mSocket); }
    int Open(milliseconds timeout, const std::atomic<bool>* stop) override {
        return ConnectTo(mEndpoint.host, mEndpoint.port, timeout, stop, mSocket);
    }
    void Close() override { mSocket = Socket(); }

    int Ask(std::uint8_t unit, const Bytes& request, const Patience& patience, Bytes& answer) override;
    void Recover(int, milliseconds, const std::atomic<bool>*) override { Close(); }

private:
    int Receive(Bytes& message, const Patience& patience);

    TcpEndpoint mEndpoint;
    Socket mSocket;
    std::uint16_t mTransaction = 0;
};

// An answer to another request, such as a second one to the last, is left behind.
int TcpLine::Ask(std::uint8_t unit, const Bytes& request, const Patience& patience, Bytes& answer) {
    ++mTransaction;
    int error = SendAll(mSocket.Get(), TcpMessage::Make(mTransaction, unit, request), patience);
    Bytes message;
    do {
        error = error != 0 ? error : Receive(message, patience);
    } while (error == 0 && WordAt(message, 0) != mTransaction);
    if (error == 0) {
        answer.assign(message.begin() + TcpMessage::HEADER_SIZE, message.end());
    }
    return error;
}

int TcpLine::Receive(Bytes& message, const Patience& patience) {
    message.clear();
    if (const int error = ReceiveUpTo(TcpMessage::LENGTH_END, mSocket.Get(), message, patience)) {
        return error;
    }
    const std::size_t size = TcpMessage::SizeOf(message);
    return size == 0 ? EMBBADDATA : ReceiveUpTo(size, mSocket.Get(), message, patience);
}

}  // namespace

std::unique_ptr<Line> MakeLine(const TcpEndpoint& endpoint) {
    if (endpoint.host.empty()) {
        throw std::invalid_argument("no host");
    }
    return std::make_unique<TcpLine>(endpoint);
}

}  // namespace kzm::ModbusGateway
