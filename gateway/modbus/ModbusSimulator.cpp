#include "gateway/modbus/ModbusSimulator.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <span>
#include <utility>

#include "gateway/cache/FrameAddresses.h"
#include "gateway/modbus/RequestLimits.h"
#include "gateway/modbus/Requests.h"
#include "gateway/modbus/Socket.h"
#include "gateway/modbus/TcpMessage.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceProfile::FrameData;

namespace {

enum class ExceptionCode : std::uint8_t { ILLEGAL_FUNCTION = 1, ILLEGAL_DATA_ADDRESS = 2, ILLEGAL_DATA_VALUE = 3 };

Bytes ExceptionAnswer(std::uint8_t function, ExceptionCode code) {
    return {static_cast<std::uint8_t>(function | EXCEPTION_FLAG), static_cast<std::uint8_t>(code)};
}

Bytes BitsAnswer(std::uint8_t function, const std::vector<std::uint16_t>& values) {
    Bytes answer(2 + (values.size() + 7) / 8);
    answer[0] = function;
    answer[1] = static_cast<std::uint8_t>(answer.size() - 2);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const unsigned bit = values[i] != 0 ? 1 : 0;
        answer[2 + i / 8] = static_cast<std::uint8_t>(answer[2 + i / 8] | bit << i % 8);
    }
    return answer;
}

Bytes RegistersAnswer(std::uint8_t function, const std::vector<std::uint16_t>& values) {
    Bytes answer{function, static_cast<std::uint8_t>(2 * values.size())};
    for (const std::uint16_t value : values) {
        AppendWord(answer, value);
    }
    return answer;
}

}  // namespace

class ModbusSimulator::Impl {
public:
    Impl(const std::vector<FrameData>& frames, const RegisterCache& cache, const std::string& host, std::uint16_t port);

    std::uint16_t GetPort() const { return PortOf(mListener); }
    void Serve(const std::atomic<bool>& stop);

private:
    struct Frame {
        ModbusFunctionCode functionCode;
        std::vector<std::uint16_t> addresses;
    };
    struct Client {
        Socket socket;
        Bytes received;  // not answered yet
    };
    using Values = std::vector<std::optional<std::uint16_t>>;

    void ServeOnce();
    void Accept();
    bool ServeClient(Client& client) const;
    bool AnswerRequests(Client& client) const;
    bool Answer(const Client& client, std::span<const std::uint8_t> request) const;
    Bytes Answer(std::span<const std::uint8_t> request) const;
    Values Find(ModbusFunctionCode functionCode, std::uint16_t first, std::uint16_t count) const;
    bool FindInFrame(std::size_t frameIndex, std::uint16_t first, Values& values) const;

    std::vector<Frame> mFrames;
    const RegisterCache& mCache;
    Socket mListener;
    std::vector<Client> mClients;
};

ModbusSimulator::Impl::Impl(const std::vector<FrameData>& frames, const RegisterCache& cache, const std::string& host,
                            std::uint16_t port)
    : mCache(cache), mListener(ListenOn(host, port)) {
    for (const FrameData& frame : frames) {
        mFrames.push_back({frame.mFunctionCode, AddressesOf(frame)});
    }
}

void ModbusSimulator::Impl::Serve(const std::atomic<bool>& stop) {
    while (!stop) {
        ServeOnce();
    }
    mClients.clear();
}

void ModbusSimulator::Impl::ServeOnce() {
    std::vector<pollfd> descriptors{{mListener.Get(), POLLIN, {}}};
    for (const Client& client : mClients) {
        descriptors.push_back({client.socket.Get(), POLLIN, {}});
    }
    poll(descriptors.data(), descriptors.size(), 50);
    for (std::size_t i = 0; i < mClients.size(); ++i) {
        if (descriptors[i + 1].revents != 0 && !ServeClient(mClients[i])) {
            mClients[i].socket = Socket();
        }
    }
    std::erase_if(mClients, [](const Client& client) { return !client.socket; });
    if (descriptors[0].revents != 0) {
        Accept();
    }
}

void ModbusSimulator::Impl::Accept() {
    if (Socket socket = AcceptFrom(mListener)) {
        mClients.push_back({std::move(socket), {}});
    }
}

// False if the client has gone, or does not speak Modbus.
bool ModbusSimulator::Impl::ServeClient(Client& client) const {
    std::array<std::uint8_t, 1024> bytes;
    const ssize_t size = recv(client.socket.Get(), bytes.data(), bytes.size(), 0);
    if (size <= 0) {
        return size < 0 && (errno == EAGAIN || errno == EINTR);
    }
    client.received.insert(client.received.end(), bytes.begin(), bytes.begin() + size);
    return AnswerRequests(client);
}

bool ModbusSimulator::Impl::AnswerRequests(Client& client) const {
    std::span<const std::uint8_t> rest(client.received);
    while (rest.size() >= TcpMessage::LENGTH_END) {
        const std::size_t size = TcpMessage::SizeOf(rest);
        if (size == 0) {
            return false;
        }
        if (rest.size() < size) {
            break;
        }
        if (!Answer(client, rest.first(size))) {
            return false;
        }
        rest = rest.subspan(size);
    }
    client.received.erase(client.received.begin(), client.received.end() - static_cast<std::ptrdiff_t>(rest.size()));
    return true;
}

// A client that does not take its answers is dropped rather than waited for: its socket does not block.
bool ModbusSimulator::Impl::Answer(const Client& client, std::span<const std::uint8_t> request) const {
    const Bytes answer = TcpMessage::Make(WordAt(request, 0), request[TcpMessage::LENGTH_END],
                                          Answer(request.subspan(TcpMessage::HEADER_SIZE)));
    return send(client.socket.Get(), answer.data(), answer.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(answer.size());
}

// From function code and data to function code and data.
Bytes ModbusSimulator::Impl::Answer(std::span<const std::uint8_t> request) const {
    const std::uint8_t function = request[0];
    const auto functionCode = static_cast<ModbusFunctionCode>(function);
    const std::uint16_t longest = MaxReadCount(functionCode);
    if (longest == 0) {
        return ExceptionAnswer(function, ExceptionCode::ILLEGAL_FUNCTION);
    }
    const std::uint16_t count = request.size() == 5 ? WordAt(request, 3) : std::uint16_t{0};
    if (count == 0 || count > longest) {
        return ExceptionAnswer(function, ExceptionCode::ILLEGAL_DATA_VALUE);
    }
    const Values found = Find(functionCode, WordAt(request, 1), count);
    std::vector<std::uint16_t> values;
    for (const auto& value : found) {
        if (!value) {
            return ExceptionAnswer(function, ExceptionCode::ILLEGAL_DATA_ADDRESS);
        }
        values.push_back(*value);
    }
    const bool isBits =
        functionCode == ModbusFunctionCode::READ_COILS || functionCode == ModbusFunctionCode::READ_DISCRETE_INPUTS;
    return isBits ? BitsAnswer(function, values) : RegistersAnswer(function, values);
}

// All from one frame, if one has them all, so that they are of one instant; else put together from several.
ModbusSimulator::Impl::Values ModbusSimulator::Impl::Find(ModbusFunctionCode functionCode, std::uint16_t first,
                                                          std::uint16_t count) const {
    Values together(count);
    for (std::size_t index = 0; index < mFrames.size(); ++index) {
        if (mFrames[index].functionCode != functionCode) {
            continue;
        }
        Values own(count);
        if (FindInFrame(index, first, own)) {
            return own;
        }
        std::ranges::transform(together, own, together.begin(), [](auto a, auto b) { return a ? a : b; });
    }
    return together;
}

// Fills in the values that the frame has; true if those are all.
bool ModbusSimulator::Impl::FindInFrame(std::size_t frameIndex, std::uint16_t first, Values& values) const {
    const auto& addresses = mFrames[frameIndex].addresses;
    const std::vector<std::uint16_t> registers = mCache.GetFrame(static_cast<std::uint8_t>(frameIndex)).registers;
    for (std::size_t i = 0; i < registers.size(); ++i) {
        if (addresses[i] >= first && addresses[i] < first + values.size()) {
            values[addresses[i] - first] = registers[i];
        }
    }
    return std::ranges::all_of(values, [](const auto& value) { return value.has_value(); });
}

ModbusSimulator::ModbusSimulator(const std::vector<FrameData>& frames, const RegisterCache& cache,
                                 const std::string& host, std::uint16_t port)
    : mImpl(std::make_unique<Impl>(frames, cache, host, port)) {}

ModbusSimulator::~ModbusSimulator() = default;

std::uint16_t ModbusSimulator::GetPort() const {
    return mImpl->GetPort();
}

void ModbusSimulator::Serve(const std::atomic<bool>& stop) {
    mImpl->Serve(stop);
}

}  // namespace kzm::ModbusGateway
