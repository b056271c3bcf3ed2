#include "gateway/ModbusSimulator.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "ServedCache.h"
#include "gateway/ModbusReader.h"
#include "gateway/Socket.h"

namespace kzm::ModbusGateway {
namespace {

using namespace ModbusDeviceModel;
using DeviceProfile::FrameData;
using Registers = std::vector<std::uint16_t>;

const std::vector<FrameData> FRAMES{
    FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 2, std::uint16_t{0x10}),
    FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 3, std::vector<std::uint16_t>{0x13, 0x11, 0x12}),
    FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 1, std::uint16_t{0x14}),  // never received
    FrameData(ModbusFunctionCode::READ_COILS, false, 0, 10, std::uint16_t{0}),
};

std::string Hex(const std::string& bytes) {
    std::string hex;
    for (const char byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4 & 15];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

std::string Bytes(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

class Client {
public:
    explicit Client(std::uint16_t port) : mSocket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(connect(mSocket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }

    void Send(const std::string& hex) {
        const std::string bytes = Bytes(hex);
        EXPECT_EQ(send(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    // As many bytes as are expected, or what came before the connection was closed.
    std::string Receive(std::size_t size) {
        std::string bytes(size, '\0');
        const timeval patience{5, 0};
        setsockopt(mSocket.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const ssize_t received = recv(mSocket.Get(), bytes.data(), size, MSG_WAITALL);
        EXPECT_TRUE(received >= 0 || errno == ECONNRESET) << "nothing came";
        return Hex(bytes.substr(0, static_cast<std::size_t>(std::max<ssize_t>(received, 0))));
    }

private:
    Socket mSocket;
};

void Fill(RegisterCache& cache) {
    cache.Update(0, Registers{0x0A0B, 0x0C0D}, 1);
    cache.Update(1, Registers{0x1313, 0x1111, 0x1212}, 1);
    cache.Update(3, Registers{1, 0, 1, 1, 0, 0, 0, 0, 0, 1}, 1);
}

TEST(ModbusSimulator, AnswersWithWhatTheCacheHolds) {
    ServedCache served(FRAMES);
    Fill(served.cache);
    const struct {
        const char* request;
        const char* answer;
    } rows[] = {
        {"aabb0000000601"
         "0300100002",
         "aabb0000000701"
         "03040a0b0c0d"},
        {"000100000006ff"
         "0300110003",
         "000100000009ff"
         "0306111112121313"},  // from the frame that holds all
        {"00010000000600"
         "0300100004",
         "00010000000b00"
         "03080a0b0c0d12121313"},  // from two frames
        {"00010000000601"
         "010000000a",
         "00010000000501"
         "01020d02"},
        {"00010000000601"
         "0300100005",
         "00010000000301"
         "8302"},  // the last never received
        {"00010000000601"
         "0400100002",
         "00010000000301"
         "8402"},
        {"00010000000601"
         "03ffff0002",
         "00010000000301"
         "8302"},
        {"00010000000601"
         "0300100000",
         "00010000000301"
         "8303"},
        {"00010000000601"
         "030010007e",
         "00010000000301"
         "8303"},
        {"00010000000401"
         "030010",
         "00010000000301"
         "8303"},
        {"00010000000601"
         "0600100001",
         "00010000000301"
         "8601"},
        {"00010000000501"
         "2b0e0100",
         "00010000000301"
         "ab01"},
    };
    std::string requests;
    std::string answers;
    Client client(served.GetPort());
    for (const auto& row : rows) {
        client.Send(row.request);
        EXPECT_EQ(client.Receive(std::string(row.answer).size() / 2), row.answer) << row.request;
        requests += row.request;
        answers += row.answer;
    }
    client.Send(requests.substr(0, 18));
    client.Send(requests.substr(18));
    EXPECT_EQ(client.Receive(answers.size() / 2), answers);
}

TEST(ModbusSimulator, DropsAClientThatSendsNoModbusAndServesTheOthers) {
    ServedCache served(FRAMES);
    Fill(served.cache);
    Client waiting(served.GetPort());
    waiting.Send("0001000000");
    for (const char* garbage : {"474554202f20", "000100000001ff03", "0001000000ff0103", "000100010006010300100001"}) {
        Client client(served.GetPort());
        client.Send(garbage);
        EXPECT_EQ(client.Receive(1), "") << garbage;
    }
    waiting.Send("06010300100001");
    EXPECT_EQ(waiting.Receive(11),
              "00010000000501"
              "03020a0b");
    EXPECT_THROW(ModbusSimulator(FRAMES, served.cache, "127.0.0.1", served.GetPort()), std::system_error);
}

TEST(ThreadsOnModbusSimulator, ServesFramesWholeWhileTheyChange) {
    const std::vector<FrameData> frames{
        FrameData(ModbusFunctionCode::READ_INPUT_REGISTERS, false, 0, 125, std::uint16_t{0})};
    ServedCache served(frames);
    served.cache.Update(0, Registers(125, 0), 1);
    const auto read = [&] {
        RegisterCache cache(frames);
        ModbusReader reader({.line = TcpEndpoint{"localhost", served.GetPort()}}, frames, cache);
        for (int round = 0; round < 100; ++round) {
            EXPECT_EQ(reader.ReadAllFrames().framesRead, 1U);
            const Registers registers = cache.GetFrame(0).registers;
            EXPECT_EQ(registers, Registers(125, registers.at(0)));
        }
    };
    std::atomic<int> reading = 2;
    std::vector<std::thread> clients;
    for (int client = 0; client < 2; ++client) {
        clients.emplace_back([&] {
            read();
            --reading;
        });
    }
    for (std::uint16_t value = 0; reading > 0; ++value) {
        served.cache.Update(0, Registers(125, value), 1);
    }
    for (std::thread& client : clients) {
        client.join();
    }
}

}  // namespace
}  // namespace kzm::ModbusGateway
