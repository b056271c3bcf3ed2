#include "gateway/modbus/ModbusReader.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <pthread.h>

#include <array>
#include <atomic>
#include <csignal>
#include <memory>
#include <optional>
#include <thread>

#include "gateway/modbus/ScriptedDevice.h"
#include "kzm/StandIn/CapturedLog.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway::ModbusReaderTest {

using namespace std::chrono_literals;
using namespace ModbusDeviceModel;
using namespace ModbusDeviceModel::DeviceCache;
using DeviceProfile::FrameData;
using Log::OrbaLogLevel;
using Registers = std::vector<std::uint16_t>;
using Clock = std::chrono::steady_clock;

constexpr auto HOLDING = ModbusFunctionCode::READ_HOLDING_REGISTERS;

ModbusSettings To(std::uint16_t port) {
    return {.line = TcpEndpoint{"127.0.0.1", port}, .timeout = 500ms, .firstPause = 20ms, .longestPause = 80ms};
}

const std::vector<FrameData> SCRIPTED_FRAMES{
    FrameData(HOLDING, false, 0, 4, std::uint16_t{10}),
    FrameData(HOLDING, false, 0, 4, std::vector<std::uint16_t>{40, 21, 20, 30})};
const Registers SCRIPTED_VALUES[] = {{10, 11, 12, 13}, {40, 21, 20, 30}};

struct FaultRow {
    const char* name;
    std::deque<Treatment> script;       // requests in the order of the frames: 10-13, 20-21, 30, 40
    std::optional<std::uint8_t> fails;  // the frame that is not read
    std::string reason;
    RegisterCache::Quality quality = QUALITY_GOOD;  // of that frame then
};

void ExpectFaultHitsOneFrameOnce(ScriptedDevice& device, const ModbusSettings& settings, const FaultRow& row) {
    SCOPED_TRACE(row.name);
    RegisterCache cache(SCRIPTED_FRAMES);
    ModbusReader reader(settings, SCRIPTED_FRAMES, cache);
    for (const std::uint64_t time : {1000U, 2000U, 3000U}) {
        const bool isFaulty = time == 2000;
        device.Treat(isFaulty ? row.script : std::deque<Treatment>{});
        const StandIn::StoppedClock clock(time);
        const ModbusReader::Round round = reader.ReadAllFrames();
        EXPECT_EQ(round.connectionError, "");
        EXPECT_EQ(round.errors.size(), isFaulty && row.fails ? 1U : 0U);
        EXPECT_EQ(round.framesRead + round.errors.size(), 2U);
        EXPECT_TRUE(isFaulty || device.GetRequestCount() == 4) << "neighbours are not read in one request";
        for (const ModbusReader::FrameError& error : round.errors) {
            EXPECT_EQ(error.reason, row.reason);
        }
        for (std::uint8_t index = 0; index < 2; ++index) {
            const bool fails = isFaulty && row.fails == index;
            EXPECT_EQ(cache.GetFrame(index).registers, SCRIPTED_VALUES[index]);
            EXPECT_EQ(cache.GetFrame(index).quality, fails ? row.quality : QUALITY_GOOD);
            EXPECT_EQ(cache.GetFrameTimestamp(index), fails ? 1000U : time) << "frame " << +index;
        }
    }
}

TEST(ModbusReader, GoesOnAndRecoversFromFaultyAnswers) {
    using enum Treatment;
    const FaultRow onTcp[] = {
        {"exception", {EXCEPTION}, 0, "Slave device or server failure", QUALITY_BAD},
        {"exception within a frame", {ANSWER, ANSWER, EXCEPTION}, 1, "Slave device or server failure", QUALITY_BAD},
        {"closed while idle", {CLOSE}, {}, ""},
        {"closed within a frame", {ANSWER, ANSWER, CLOSE}, {}, ""},
        {"closed at a request", {CLOSE, CLOSE}, 0, "Connection reset by peer"},
        {"late", {LATE}, 0, "Connection timed out"},
        {"part of an answer", {ANSWER, ANSWER, TRUNCATED}, 1, "Connection timed out"},
        {"too few registers", {TOO_FEW}, 0, "Invalid data"},
        {"every answer twice", {TWICE, TWICE, TWICE, TWICE}, {}, ""},
        {"answer to another request", {MISFIT}, 0, "Connection timed out"},
        {"garbage", {GARBAGE}, 0, "Invalid data"}};
    for (const FaultRow& row : onTcp) {
        ScriptedDevice device(0);
        ExpectFaultHitsOneFrameOnce(device, To(device.GetPort()), row);
    }
    const FaultRow onASerialLine[] = {
        {"exception", {EXCEPTION}, 0, "Slave device or server failure", QUALITY_BAD},
        // The next request asks for as many registers, and an answer does not say which request it belongs to.
        {"late", {ANSWER, ANSWER, LATE}, 1, "Connection timed out"},
        {"too few registers", {TOO_FEW}, 0, "Invalid data"},
        {"disturbed", {MISFIT}, 0, "Invalid CRC"}};
    for (const FaultRow& row : onASerialLine) {
        ScriptedDevice device(600ms);
        ExpectFaultHitsOneFrameOnce(device, {.line = SerialPort{device.GetLineName()}, .timeout = 400ms}, row);
    }
}

TEST(ModbusReader, ReadsNothingByAFunctionThatWrites) {
    ScriptedDevice device(0);
    std::vector<FrameData> frames = SCRIPTED_FRAMES;
    frames.emplace_back(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, false, 0, 2, std::uint16_t{5});
    RegisterCache cache(frames);
    const ModbusReader::Round round = ModbusReader(To(device.GetPort()), frames, cache).ReadAllFrames();
    EXPECT_EQ(round.framesRead, 2U);
    ASSERT_EQ(round.errors.size(), 1U);
    EXPECT_EQ(round.errors[0].frameIndex, 2);
    EXPECT_EQ(round.errors[0].reason, "function code 16 reads nothing");
}

TEST(ModbusReader, DoesNotWaitForASilenceThatNeverComes) {
    ScriptedDevice tcp(0);
    ScriptedDevice serial(0ms);
    const ModbusSettings lines[] = {{.line = TcpEndpoint{"127.0.0.1", tcp.GetPort()}, .timeout = 200ms},
                                    {.line = SerialPort{serial.GetLineName()}, .timeout = 200ms}};
    tcp.Treat({Treatment::MISFITS});
    serial.Treat({Treatment::MISFITS});
    for (const ModbusSettings& settings : lines) {
        RegisterCache cache(SCRIPTED_FRAMES);
        ModbusReader reader(settings, {SCRIPTED_FRAMES[0]}, cache);
        const auto start = Clock::now();
        EXPECT_EQ(reader.ReadAllFrames().errors.size(), 1U);
        EXPECT_LT(Clock::now() - start, 2s);
    }
}

// A port on loopback whose queue is full, so that whoever connects waits.
class FullListener {
public:
    FullListener() {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        getsockname(mListener.Get(), reinterpret_cast<sockaddr*>(&address), &size);
        listen(mListener.Get(), 0);
        for (Socket& waiting : mWaiting) {
            waiting = Socket(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
            connect(waiting.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        }
    }
    std::uint16_t GetPort() const { return PortOf(mListener); }

private:
    Socket mListener = ListenOn("127.0.0.1", 0);
    std::array<Socket, 4> mWaiting;
};

TEST(ModbusReader, TellsThatConnectingTimedOutWhateverSignalsCome) {
    const FullListener device;
    RegisterCache cache(SCRIPTED_FRAMES);
    ModbusReader reader(To(device.GetPort()), SCRIPTED_FRAMES, cache);
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    const std::jthread disturbing([thread = pthread_self()](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            pthread_kill(thread, SIGUSR1);
            std::this_thread::sleep_for(10ms);
        }
    });
    EXPECT_EQ(reader.ReadAllFrames().connectionError,
              "127.0.0.1:" + std::to_string(device.GetPort()) + ": Connection timed out");
}

TEST(ModbusReader, EndsWhateverItWaitsForWhenItsCallerIsStopped) {
    StandIn::CapturedLog log(OrbaLogLevel::INFORMATION);
    const FullListener full;
    ScriptedDevice tcp(0);
    ScriptedDevice serial(0ms);
    ScriptedDevice noisy(0ms);
    tcp.Treat({Treatment::TRUNCATED});
    serial.Treat({Treatment::TRUNCATED});
    noisy.Treat({Treatment::MISFITS});
    const std::variant<TcpEndpoint, SerialPort> lines[] = {
        TcpEndpoint{"127.0.0.1", full.GetPort()}, TcpEndpoint{"127.0.0.1", tcp.GetPort()},
        SerialPort{serial.GetLineName()}, SerialPort{noisy.GetLineName()}};
    for (const auto& line : lines) {
        std::atomic<bool> stop = false;
        RegisterCache cache(SCRIPTED_FRAMES);
        ModbusReader reader({.line = line, .timeout = 10s}, SCRIPTED_FRAMES, cache, &stop);
        const std::jthread stopping([&stop] {
            std::this_thread::sleep_for(100ms);
            stop = true;
        });
        const auto start = Clock::now();
        const ModbusReader::Round round = reader.ReadAllFrames();
        EXPECT_TRUE(round.stopped);
        EXPECT_EQ(round.errors.size(), 2U);
        EXPECT_EQ(round.connectionError, "");
        EXPECT_LT(Clock::now() - start, 2s);
    }
    EXPECT_TRUE(log.Texts(OrbaLogLevel::WARNING).empty());
}

TEST(ModbusReader, TriesAnUnreachableDeviceAfterGrowingPausesAndTellsOnce) {
    StandIn::CapturedLog log(OrbaLogLevel::INFORMATION);
    auto device = std::make_unique<ScriptedDevice>(0);
    const std::uint16_t port = device->GetPort();
    const std::string name = "127.0.0.1:" + std::to_string(port);
    RegisterCache cache(SCRIPTED_FRAMES);
    ModbusReader reader(To(port), SCRIPTED_FRAMES, cache);
    EXPECT_EQ(reader.ReadAllFrames().framesRead, 2U);
    device.reset();
    const auto firstFailure = Clock::now();
    for (const auto pause : {0ms, 0ms, 25ms}) {  // an attempt, a round in its pause, the next attempt
        std::this_thread::sleep_for(pause);
        const ModbusReader::Round round = reader.ReadAllFrames();
        EXPECT_EQ(round.connectionError, name + ": Connection refused");
        EXPECT_EQ(round.errors.size(), 2U);
        EXPECT_EQ(cache.GetFrame(0).quality, QUALITY_GOOD);
    }
    device = std::make_unique<ScriptedDevice>(port);
    while (reader.ReadAllFrames().framesRead == 0) {
        ASSERT_LT(Clock::now() - firstFailure, 5s);
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_GE(Clock::now() - firstFailure, 60ms) << "20 ms and 40 ms, however long a busy machine takes for a round";
    EXPECT_EQ(log.Joined(), "\n4[ModbusConnection] [Read] " + name + " cannot be reached: Connection refused" +
                                "\n6[ModbusConnection] [Read] " + name + " answers again");
}

}  // namespace kzm::ModbusGateway::ModbusReaderTest
