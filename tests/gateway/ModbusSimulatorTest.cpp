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

void Fill(RegisterCache& cache) {
    cache.Update(0, Registers{0x0A0B, 0x0C0D}, 1);
    cache.Update(1, Registers{0x1313, 0x1111, 0x1212}, 1);
    cache.Update(3, Registers{1, 0, 1, 1, 0, 0, 0, 0, 0, 1}, 1);
}

// Sends and receives bytes given as hexadecimal text, with blanks where they help.
class Client {
public:
    explicit Client(std::uint16_t port) : mSocket(socket(AF_INET, SOCK_STREAM, 0)) {
        const sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
        const timeval patience{5, 0};
        setsockopt(mSocket.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        EXPECT_EQ(connect(mSocket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    void Send(const std::string& hex) {
        const std::string bytes = Bytes(hex);
        EXPECT_EQ(send(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    bool Receives(const std::string& hex) {
        const std::string expected = Bytes(hex);
        std::string bytes(expected.size(), '\0');
        return recv(mSocket.Get(), bytes.data(), bytes.size(), MSG_WAITALL) >= 0 && bytes == expected;
    }

    bool IsClosed() {
        char byte = 0;
        return recv(mSocket.Get(), &byte, 1, 0) == 0 || errno == ECONNRESET;
    }

private:
    static std::string Bytes(std::string hex) {
        std::erase(hex, ' ');
        std::string bytes;
        for (std::size_t i = 0; i < hex.size(); i += 2) {
            bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        }
        return bytes;
    }

    Socket mSocket;
};

TEST(ModbusSimulator, AnswersWithWhatTheCacheHolds) {
    ServedCache served(FRAMES);
    Fill(served.cache);
    const char* const rows[][2] = {
        {"aabb 0000 0006 01 03 0010 0002", "aabb 0000 0007 01 03 04 0a0b 0c0d"},
        {"0001 0000 0006 ff 03 0011 0003", "0001 0000 0009 ff 03 06 1111 1212 1313"},       // from the frame with all
        {"0001 0000 0006 00 03 0010 0004", "0001 0000 000b 00 03 08 0a0b 0c0d 1212 1313"},  // from two frames
        {"0001 0000 0006 01 01 0000 000a", "0001 0000 0005 01 01 02 0d02"},
        {"0001 0000 0006 01 03 0010 0005", "0001 0000 0003 01 83 02"},  // the last never received
        {"0001 0000 0006 01 04 0010 0002", "0001 0000 0003 01 84 02"},
        {"0001 0000 0006 01 03 ffff 0002", "0001 0000 0003 01 83 02"},
        {"0001 0000 0006 01 03 0010 0000", "0001 0000 0003 01 83 03"},
        {"0001 0000 0006 01 03 0010 007e", "0001 0000 0003 01 83 03"},
        {"0001 0000 0004 01 03 0010", "0001 0000 0003 01 83 03"},
        {"0001 0000 0006 01 06 0010 0001", "0001 0000 0003 01 86 01"},
        {"0001 0000 0005 01 2b 0e01 00", "0001 0000 0003 01 ab 01"},
    };
    Client client(served.GetPort());
    std::string requests;
    std::string answers;
    for (const auto& [request, answer] : rows) {
        client.Send(request);
        EXPECT_TRUE(client.Receives(answer)) << request;
        requests += request;
        answers += answer;
    }
    client.Send(requests);
    EXPECT_TRUE(client.Receives(answers)) << "all at once";
}

TEST(ModbusSimulator, DropsAClientThatSendsNoModbusAndServesTheOthers) {
    ServedCache served(FRAMES);
    Fill(served.cache);
    Client waiting(served.GetPort());
    waiting.Send("0001 0000 00");
    for (const char* garbage : {"474554202f20", "000100000001ff03", "0001000000ff0103", "000100010006010300100001"}) {
        Client client(served.GetPort());
        client.Send(garbage);
        EXPECT_TRUE(client.IsClosed()) << garbage;
    }
    waiting.Send("06 01 03 0010 0001");
    EXPECT_TRUE(waiting.Receives("0001 0000 0005 01 03 02 0a0b"));
    EXPECT_THROW(ModbusSimulator(FRAMES, served.cache, "127.0.0.1", served.GetPort()), std::system_error);
}

TEST(ThreadsOnModbusSimulator, ServesFramesWholeWhileTheyChange) {
    const std::vector<FrameData> frames{
        FrameData(ModbusFunctionCode::READ_INPUT_REGISTERS, false, 0, 125, std::uint16_t{0})};
    ServedCache served(frames);
    served.cache.Update(0, Registers(125, 0), 1);
    std::atomic<int> reading = 2;
    const auto read = [&] {
        RegisterCache cache(frames);
        ModbusReader reader({.line = TcpEndpoint{"localhost", served.GetPort()}}, frames, cache);
        for (int round = 0; round < 100; ++round) {
            EXPECT_EQ(reader.ReadAllFrames().framesRead, 1U);
            const Registers registers = cache.GetFrame(0).registers;
            EXPECT_EQ(std::ranges::count(registers, registers.at(0)), 125);
        }
        --reading;
    };
    const std::jthread clients[] = {std::jthread(read), std::jthread(read)};
    for (std::uint16_t value = 0; reading > 0; ++value) {
        served.cache.Update(0, Registers(125, value), 1);
    }
}

}  // namespace
}  // namespace kzm::ModbusGateway
