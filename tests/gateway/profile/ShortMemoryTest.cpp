#include "Allocator.h"
#include "gateway/capture/Capture.h"
#include "gateway/profile/ProfileTesting.h"

#include "gateway/diagnosis/Explanation.h"
#include "gateway/model/ValueEncoder.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusGateway::ShortMemoryTest {

using Log::OrbaLogLevel;
using ModbusDeviceModel::DataModel::PreviousMeasurements;
using Testing::RunShortOfMemory;

// An example profile and one of its captures.
struct ExampleProfile {
    explicit ExampleProfile(const std::string& name) : ExampleProfile(name, name) {}
    ExampleProfile(const std::string& name, const std::string& captureName) {
        ProfileLoader::Result loaded = ProfileLoader::Load(ReadFile("profiles/" + name + ".jsonc"));
        profile = std::move(loaded.profile);
        capture = Capture::Parse(ReadFile("profiles/" + captureName + ".capture.json"), profile->GetDeviceFrames(),
                                 loaded.problems);
        EXPECT_EQ(Written(loaded.problems), "");
    }

    std::shared_ptr<RegisterCache> CacheAt(const Capture::Snapshot& snapshot) const {
        auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
        Capture::Restore(snapshot, *cache);
        return cache;
    }

    std::unique_ptr<LoadedProfile> profile;
    Capture capture;
};

// An incomplete request may leave only attributes that a complete one writes, and quality "Bad" for a missing value.
void ExpectPartOf(const json& whole, const json& left) {
    const json expected = whole.flatten(), written = left.flatten();
    for (const auto& [pointer, leaf] : written.items()) {
        EXPECT_TRUE(leaf.is_null() || leaf == "Bad" || leaf == expected.value(pointer, json())) << pointer << left;
    }
}

json Records(const PreviousMeasurements& previous) {
    json records = json::object();
    for (const auto& [key, record] : *previous) {
        records[key] = {record.value, static_cast<int>(record.quality), record.timestamp};
    }
    return records;
}

// Discards log lines without allocating.
struct SilentLog {
    explicit SilentLog(OrbaLogLevel level) {
        Log::RootLogger::GetInstance().SetSink([](OrbaLogLevel, const char*) {});
        Log::RootLogger::GetInstance().SetLevel(level);
    }
    ~SilentLog() {
        Log::RootLogger::GetInstance().SetSink({});
        Log::RootLogger::GetInstance().SetLevel(OrbaLogLevel::WARNING);
    }
};

TEST(ShortMemory, LeavesObjectsThatTheNextRequestCompletes) {
    for (const auto* name : {"energy-meter", "sunspec-inverter", "circuit-breaker"}) {
        const ExampleProfile example(name);
        const auto cache = example.CacheAt(example.capture.snapshots.back());
        const StoppedClock clock(example.capture.snapshots.back().time);
        for (const auto level : {OrbaLogLevel::NONE, OrbaLogLevel::TRACE}) {
            const SilentLog log(level);
            for (const auto& object : example.profile->objects) {
                SCOPED_TRACE(object.name);
                kz::orba::VortaORBAObject target("", object.name, object.alias, nullptr);
                const auto request = [&] { example.profile->model->GetVortaObjectValue(cache, false, target); };
                request();
                const json whole = std::exchange(target.GetValue(), nullptr);
                const auto shortages = RunShortOfMemory(request, [&] {
                    ExpectPartOf(whole, target.GetValue());
                    request();
                    EXPECT_EQ(std::exchange(target.GetValue(), nullptr), whole);
                });
                EXPECT_GT(shortages, 0U);
            }
        }
    }
}

// A failed evaluation does not consume the change: the next one still reports it.
TEST(ShortMemory, LosesNoAlarm) {
    const ExampleProfile example("energy-meter", "energy-meter.series");
    const SilentLog log(OrbaLogLevel::TRACE);
    auto previous = std::make_shared<PreviousMeasurements::element_type>();
    for (const auto& snapshot : example.capture.snapshots) {
        const auto cache = example.CacheAt(snapshot);
        const StoppedClock clock(snapshot.time);
        for (const auto& alarm : example.profile->alarms) {
            SCOPED_TRACE(alarm.name);
            const auto before = *previous;
            const json recordsBefore = Records(previous);
            const json& structure = alarm.structure;
            kz::orba::VortaORBAObject target("", alarm.name, alarm.alias, structure);
            const auto evaluate = [&] {
                example.profile->model->GetCustomAlarmVortaObjectValue(cache, false, target, previous);
            };
            evaluate();
            const json whole = std::exchange(target.GetValue(), structure);
            const json records = Records(previous);
            *previous = before;
            RunShortOfMemory(evaluate, [&] {
                if (target.GetValue() != whole || Records(previous) != records) {
                    EXPECT_EQ(Records(previous), recordsBefore);
                    evaluate();
                }
                EXPECT_EQ(std::exchange(target.GetValue(), structure), whole);
                EXPECT_EQ(Records(previous), records);
                *previous = before;
            });
            evaluate();
        }
    }
}

// One allocation fails at a time: explanations hold JSON objects, which cannot be destroyed without memory.
TEST(ShortMemory, EndsAnExplanation) {
    const ExampleProfile example("energy-meter");
    const auto cache = example.CacheAt(example.capture.snapshots.back());
    const StoppedClock clock(example.capture.snapshots.back().time);
    const SilentLog log(OrbaLogLevel::NONE);
    for (const auto& object : example.profile->objects) {
        bool hasStruck = true;
        for (std::size_t n = 1; hasStruck; ++n) {
            std::optional<Explanation> explanation;
            const Testing::MemoryShortage shortage(n, /*isLasting=*/false);
            try {
                explanation = Explain(*example.profile, object, {cache});
            } catch (const std::bad_alloc&) {
            }
            hasStruck = shortage.HasStruck();
            EXPECT_TRUE(explanation || hasStruck) << object.name;
        }
    }
}

TEST(ShortMemory, LeavesModelAndCacheAsTheyWere) {
    const ExampleProfile example("energy-meter");
    const auto cache = example.CacheAt(example.capture.snapshots.back());
    const SilentLog log(OrbaLogLevel::TRACE);
    const auto ask = [&] {
        std::vector<std::size_t> all;
        for (const auto& object : example.profile->objects) {
            const auto information = example.profile->model->GetMeasurementInformation(object.name);
            const auto frames = example.profile->model->GetDependencyFrame(object.name, object.alias);
            all.insert(all.end(), {information.mRegisterAddress, information.mUnit.size(), frames.size()});
        }
        const auto& service = example.profile->services.front();
        const auto mapping = example.profile->serviceModel->GetServiceMapping(service.name, service.alias);
        for (const auto& element : mapping.elements) {
            const auto encoded = EncodeValue(*element, /*deviceBigEndian=*/true, "1");
            all.push_back(mapping.BuildFrameDataValue(element->GetFrameIndex())->mValues.size());
            all.push_back(DecodeValue(*element, /*deviceBigEndian=*/true, encoded.registers).dump().size());
        }
        const auto frame = cache->GetFrame(0);
        cache->Update(0, frame.registers, frame.timestamp);
        all.insert(all.end(), frame.registers.begin(), frame.registers.end());
        return all;
    };
    const auto expected = ask();
    EXPECT_GT(RunShortOfMemory(ask, [&] { EXPECT_EQ(ask(), expected); }), 500U);
}

}  // namespace kzm::ModbusGateway::ShortMemoryTest
