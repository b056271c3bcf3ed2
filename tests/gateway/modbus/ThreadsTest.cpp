#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>

#include "gateway/modbus/ModbusReader.h"
#include "gateway/modbus/ModbusSimulator.h"
#include "gateway/profile/ProfileTesting.h"
#include "kzm/DateTime/DateTime.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusGateway::ThreadsTest {

using kzm::Log::RootLogger;
using ModbusDeviceModel::DataModel::PreviousMeasurements;
using std::chrono::steady_clock;

constexpr std::uint16_t REGISTERS = 100;

// All bytes of an update are the same letter, and each update has another: a mixture of two updates shows two letters.
constexpr const char* PROFILE = R"({
"device": {"model": "M"},
"frames": [{"name": "frame", "function": "holding", "address": 0, "count": 100}],
"enumerations": {"parity": {"0": "Even", "1": "Odd"}},
"elements": {"left": {"address": 1, "type": "uint32"}, "whole": {"address": 0, "type": "text", "count": 100}},
"objects": [
{"name": "Whole", "value": "whole"},
{"name": "Number", "value": {"address": 90, "type": "uint32"}},
{"name": "Sum", "value": {"chain": "sum", "inputs": {"a": "left", "b": {"address": 98, "type": "uint32"}}}},
{"name": "Parity", "labels": {"Odd": 1, "Even": 0},
 "value": {"address": 99, "type": "enum16", "mask": "0x0001", "enumeration": "parity"}}],
"alarms": [{"name": "Changed", "priority": "LOW", "changes": true, "chain": "not equal", "left": "whole", "right": {"previous": "P"}}]
})";

bool IsWhole(const json& value) {
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        return text.size() == 2 * REGISTERS && text.find_first_not_of(text[0]) == std::string::npos;
    }
    // One letter four times, the sum of two such numbers, or 0 or 1.
    const auto number = value.get<std::uint64_t>();
    return number <= 1 || number % 0x01010101 == 0;
}

// One thread of a service: reads all objects and the alarm again and again, with its own map of previous values.
std::size_t ReadUntil(const std::atomic<bool>& stop, const LoadedProfile& profile,
                      const std::shared_ptr<RegisterCache>& cache) {
    const auto previous = std::make_shared<PreviousMeasurements::element_type>();
    std::size_t rounds = 0;
    for (; !stop; ++rounds) {
        const auto frame = cache->GetFrame(0).registers;
        EXPECT_EQ(std::count(frame.begin(), frame.end(), frame[0]), REGISTERS);
        for (const auto& object : profile.objects) {
            const json value = ObjectOf(profile, cache, object.name);
            EXPECT_TRUE(IsWhole(value["value"])) << value;
            EXPECT_TRUE(value["quality"] == "Good" || value["quality"] == "Questionable") << value;
        }
        kz::orba::VortaORBAObject alarm("", profile.alarms[0].name, "", profile.alarms[0].structure);
        EXPECT_EQ(profile.model->GetCustomAlarmVortaObjectValue(cache, false, alarm, previous), kz::orba::StatusCode{});
        for (const auto& [key, record] : *previous) {
            EXPECT_TRUE(IsWhole(record.value)) << key << record.value;
        }
        EXPECT_TRUE(alarm.GetValue()["elements"]["state"]["value"].is_string());
    }
    return rounds;
}

// What else goes on in a gateway meanwhile: the log's sink and level change, and another device's profile is loaded.
void DisturbUntil(const std::atomic<bool>& stop) {
    auto& logger = RootLogger::GetInstance();
    for (int i = 0; !stop; ++i) {
        logger.SetSink([lines = 0](auto, const char*) mutable { ++lines; });
        // Mostly off: the log's lock would serialise the readers.
        logger.SetLevel(i % 10 == 0 ? Log::OrbaLogLevel::TRACE : Log::OrbaLogLevel::NONE);
        EXPECT_TRUE(ProfileLoader::Load(PROFILE).profile);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    logger.SetLevel(Log::OrbaLogLevel::WARNING);
    logger.SetSink({});
}

// Another gateway that asks for the frame over Modbus.
void PollUntil(const std::atomic<bool>& stop, const LoadedProfile& profile, RegisterCache& served) {
    const auto& frames = profile.model->GetFrames();
    ModbusSimulator simulator(frames, served, "127.0.0.1", 0);
    const std::jthread serving([&] { simulator.Serve(stop); });
    RegisterCache cache(frames);
    ModbusReader reader({.line = TcpEndpoint{"127.0.0.1", simulator.GetPort()}}, frames, cache);
    std::size_t rounds = 0;
    while (!stop) {
        if (reader.ReadAllFrames().framesRead == 1) {
            const auto frame = cache.GetFrame(0).registers;
            EXPECT_EQ(std::count(frame.begin(), frame.end(), frame[0]), REGISTERS);
            ++rounds;
        }
    }
    EXPECT_GT(rounds, 0U);
}

// Runs for one second, or for KZM_SOAK_SECONDS from the environment.
TEST(ThreadsOnOneDevice, ReadersSeeEveryFrameWholeAndFreshWhileItIsWritten) {
    const auto loaded = ProfileLoader::Load(PROFILE);
    ASSERT_TRUE(loaded.profile) << Written(loaded.problems);
    const auto cache = std::make_shared<RegisterCache>(loaded.profile->model->GetFrames());
    const auto update = [&](std::uint64_t counter) {
        const auto letter = static_cast<std::uint16_t>(('A' + counter % 26) * 0x0101);
        cache->Update(0, std::vector<std::uint16_t>(REGISTERS, letter),
                      DateTime::DateTime::GetRealTimeInMilliseconds());
        cache->SetQuality(0, counter % 3 == 0 ? QUALITY_QUESTIONABLE : QUALITY_GOOD);
    };
    update(0);
    std::atomic<bool> stop = false;
    std::vector<std::thread> threads;
    threads.emplace_back([&] { DisturbUntil(stop); });
    threads.emplace_back([&] { PollUntil(stop, *loaded.profile, *cache); });
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] { EXPECT_GT(ReadUntil(stop, *loaded.profile, cache), 10U); });
    }
    const char* const seconds = std::getenv("KZM_SOAK_SECONDS");
    const auto end = steady_clock::now() + std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 1);
    for (std::uint64_t counter = 1; steady_clock::now() < end; ++counter) {
        update(counter);
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace kzm::ModbusGateway::ThreadsTest
