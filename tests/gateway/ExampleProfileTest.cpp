#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "ProfileTesting.h"
#include "gateway/Capture.h"
#include "kzm/DateTime/DateTime.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway {

namespace {

using ModbusDeviceModel::DataModel::PreviousMeasurements;
using nlohmann::json;

std::string ReadFile(const std::string& name) {
    std::ifstream file(KZM_SOURCE_DIR "/profiles/" + name);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::unique_ptr<LoadedProfile> LoadExample(const std::string& name) {
    ProfileLoader::Result loaded = ProfileLoader::Load(ReadFile(name + ".jsonc"));
    EXPECT_EQ(Written(loaded.problems), "");
    return std::move(loaded.profile);
}

json ReadObject(const LoadedProfile& profile, const LoadedProfile::Object& object,
                const std::shared_ptr<RegisterCache>& cache) {
    kz::orba::VortaORBAObject target(object.key, object.name, object.alias, object.structure);
    const auto status = profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target);
    return {{"name", object.name},
            {"alias", object.alias},
            {"unit", object.unit},
            {"status", static_cast<std::int32_t>(status)},
            {"value", target.GetValue()}};
}

json EvaluateAlarm(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm,
                   const std::shared_ptr<RegisterCache>& cache, const PreviousMeasurements& previous) {
    kz::orba::VortaORBAObject target("", alarm.name, alarm.alias, alarm.structure);
    const auto status =
        profile.model->GetCustomAlarmVortaObjectValue(cache, /*ignoreCacheAge=*/false, target, previous);
    return {{"name", alarm.name},
            {"alias", alarm.alias},
            {"momentary", alarm.element->IsHasChangedAlarm()},
            {"status", static_cast<std::int32_t>(status)},
            {"value", target.GetValue()}};
}

// What `read` gives at each snapshot of a capture, with the clock stopped at its time.
template <typename Read>
void ExpectReplay(const LoadedProfile& profile, const std::string& captureName, const std::string& expectedName,
                  Read read) {
    Problems problems;
    const Capture capture = Capture::Parse(ReadFile(captureName), profile, problems);
    ASSERT_EQ(Written(problems), "");
    const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    json lines = json::array();
    for (const auto& snapshot : capture.snapshots) {
        Capture::Restore(snapshot, *cache);
        const StandIn::StoppedClock clock(snapshot.time);
        for (json& line : read(cache)) {
            if (capture.snapshots.size() > 1) {
                line["time"] = DateTime::DateTime::GetCalendarTime();
            }
            lines.push_back(std::move(line));
        }
    }
    json expected = json::parse(ReadFile(expectedName));
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        expected[i].erase("why");  // in the program's words
        EXPECT_EQ(lines[i].dump(1), expected[i].dump(1));
    }
}

TEST(ExampleProfile, CapturesBecomeTheExpectedObjects) {
    for (const std::string name : {"energy-meter", "circuit-breaker", "sunspec-inverter"}) {
        SCOPED_TRACE(name);
        const auto profile = LoadExample(name);
        ASSERT_TRUE(profile);
        ExpectReplay(*profile, name + ".capture.json", name + ".expected.json", [&](const auto& cache) {
            std::vector<json> objects;
            for (const auto& object : profile->objects) {
                objects.push_back(ReadObject(*profile, object, cache));
            }
            return objects;
        });
    }
}

TEST(ExampleProfile, CapturesHaveTheExpectedHistoryOfAlarms) {
    for (const auto& [name, capture] : {std::pair<std::string, std::string>{"energy-meter", ".series.capture.json"},
                                        {"circuit-breaker", ".capture.json"}}) {
        SCOPED_TRACE(name);
        const auto profile = LoadExample(name);
        ASSERT_TRUE(profile);
        const auto previous = std::make_shared<PreviousMeasurements::element_type>();
        ExpectReplay(*profile, name + capture, name + ".alarms.expected.json", [&](const auto& cache) {
            std::vector<json> alarms;
            for (const auto& alarm : profile->alarms) {
                alarms.push_back(EvaluateAlarm(*profile, alarm, cache, previous));
            }
            return alarms;
        });
    }
}

}  // namespace

}  // namespace kzm::ModbusGateway
