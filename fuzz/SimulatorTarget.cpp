// Asks the simulated device with any bytes.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <span>
#include <thread>

#include "fuzz/Input.h"
#include "gateway/modbus/ModbusSimulator.h"
#include "gateway/modbus/Socket.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusGateway;
using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceProfile::FrameData;

constexpr std::size_t HEADER_SIZE = 6;

struct Simulated {
    Simulated() : thread([this] { simulator.Serve(stop); }) {
        cache.Update(0, std::vector<std::uint16_t>{0x1234, 0xFFFF, 0}, 1);
        cache.Update(1, std::vector<std::uint16_t>{1, 0, 1, 1, 1, 0, 0, 0, 1}, 1);
    }
    ~Simulated() {
        stop = true;
        thread.join();
    }

    const std::vector<FrameData> frames{
        FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 3, std::uint16_t{10}),
        FrameData(ModbusFunctionCode::READ_COILS, false, 0, 9, std::uint16_t{65527}),
        FrameData(ModbusFunctionCode::READ_INPUT_REGISTERS, false, 0, 2, std::uint16_t{0})};
    RegisterCache cache{frames};
    ModbusSimulator simulator{frames, cache, "127.0.0.1", 0};
    std::atomic<bool> stop = false;
    std::thread thread;
};

// Sends all, says that no more will come, and takes what is answered.
Bytes Ask(std::uint16_t port, const Bytes& bytes) {
    const Socket socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // The fuzzer's alarm may interrupt either call; a connection that was being made then goes on being made.
    while (connect(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 && errno != EISCONN) {
        Require(errno == EINTR, "the simulator listens");
    }
    send(socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    shutdown(socket.Get(), SHUT_WR);
    Bytes answers;
    std::array<std::uint8_t, 4096> part;
    for (ssize_t size = 0; (size = TEMP_FAILURE_RETRY(recv(socket.Get(), part.data(), part.size(), 0))) > 0;) {
        answers.insert(answers.end(), part.begin(), part.begin() + size);
    }
    return answers;
}

using Span = std::span<const std::uint8_t>;

std::size_t LengthIn(Span message) {
    return static_cast<std::size_t>(message[4] << 8 | message[5]);
}

// What follows the first message; nothing where there is no whole message.
Span Rest(Span bytes) {
    const std::size_t size = bytes.size() < HEADER_SIZE ? HEADER_SIZE : HEADER_SIZE + LengthIn(bytes);
    return size <= bytes.size() ? bytes.subspan(size) : Span{};
}

void RequireAnswers(Span requests, Span answers) {
    for (; !answers.empty(); answers = Rest(answers), requests = Rest(requests)) {
        Require(requests.size() >= HEADER_SIZE + 2, "an answer has a request");
        Require(answers.size() >= HEADER_SIZE + 3, "an answer is whole");
        Require(std::equal(requests.begin(), requests.begin() + 4, answers.begin()) && answers[6] == requests[6],
                "an answer has the header of its request");
        const std::size_t length = LengthIn(answers);
        Require(length <= 254 && answers.size() >= HEADER_SIZE + length, "an answer has the length that it says");
        Require((answers[7] & 0x7F) == (requests[7] & 0x7F), "an answer has the function of its request");
        const bool isException = (answers[7] & 0x80) != 0;
        Require(length == (isException ? 3U : 3U + answers[8]), "an answer says how long its data is");
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    static const Simulated device;
    constexpr std::size_t LONGEST = 1024;  // so that the answers fit into a socket's buffer
    const Bytes requests(data, data + std::min(size, LONGEST));
    RequireAnswers(requests, Ask(device.simulator.GetPort(), requests));
    return 0;
}
