#include "gateway/diagnosis/Explanation.h"

#include <functional>
#include <thread>

#include "gateway/capture/Capture.h"
#include "gateway/diagnosis/Recomputing.h"
#include "gateway/profile/ProfileTesting.h"
#include "kzm/StandIn/CapturedLog.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway {
namespace {

using nlohmann::json;

// Every part that is not Good has a reason that says more than "internal", every Good one none.
void ExpectReasons(const Explanation& part) {
    const bool isGood = !part.value.is_null() && part.quality == ModbusDeviceModel::DeviceCache::QUALITY_GOOD;
    const std::string reason = part.why.ToJson()["name"];
    if (part.kind != Explanation::Kind::GROUP && part.kind != Explanation::Kind::CONSTANT) {
        EXPECT_EQ(reason == "good", isGood) << part.ToJson().dump(1);
    }
    EXPECT_NE(reason, "internal") << part.ToJson().dump(1);
    for (const Explanation& inner : part.parts) {
        ExpectReasons(inner);
    }
}

TEST(Explanation, TheValueIsThatOfTheRequestForEveryObjectOfEveryProfileAndSnapshot) {
    json all = json::array();
    for (const std::string name : {"energy-meter", "energy-meter.series", "circuit-breaker", "sunspec-inverter"}) {
        const auto loaded = ProfileLoader::Load(ReadFile("profiles/" + name.substr(0, name.find('.')) + ".jsonc"));
        const LoadedProfile& profile = *loaded.profile;
        Problems problems;
        const Capture capture =
            Capture::Parse(ReadFile("profiles/" + name + ".capture.json"), profile.GetDeviceFrames(), problems);
        const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
        const auto previous =
            std::make_shared<std::map<std::string, ModbusDeviceModel::DataModel::ComputedAlarmPreviousMeasurement>>();
        for (const Capture::Snapshot& snapshot : capture.snapshots) {
            const StandIn::StoppedClock clock(snapshot.time);
            Capture::Restore(snapshot, *cache);
            for (const auto& object : profile.objects) {
                kz::orba::VortaORBAObject target(object.key, object.name, object.alias, object.structure);
                const auto status = profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target);
                const Explanation explanation = Explain(profile, object, {cache});
                EXPECT_EQ(explanation.object, target.GetValue()) << object.name;
                EXPECT_EQ(explanation.requestStatus, status) << object.name;
                if (explanation.kind == Explanation::Kind::OBJECT && !explanation.value.is_null()) {
                    EXPECT_NE(target.GetValue().dump().find(explanation.value.dump()), std::string::npos);
                }
                ExpectReasons(explanation);
                all.push_back(explanation.ToJson());
            }
            for (const auto& alarm : profile.alarms) {
                const Explanation explanation = Explain(profile, alarm, {cache}, previous);
                kz::orba::VortaORBAObject target("", alarm.name, alarm.alias, alarm.structure);
                profile.model->GetCustomAlarmVortaObjectValue(cache, /*ignoreCacheAge=*/false, target, previous);
                EXPECT_EQ(explanation.object, target.GetValue()) << alarm.name;
                ExpectReasons(explanation);
            }
        }
    }
    ExpectRecomputed(all);
}

// The lines of the profile that caused the steps of a part and of its parts, as "step line".
void AddLines(const Explanation& part, std::string& lines) {
    lines += part.place ? part.role + "@" + std::to_string(part.place->line) + part.place->name + " " : "";
    for (const Explanation::Step& step : part.steps) {
        const json written = part.ToJson()["steps"][static_cast<std::size_t>(&step - part.steps.data())];
        lines += step.line == 0 ? "" : written["step"].get<std::string>() + std::to_string(step.line) + " ";
    }
    for (const Explanation& inner : part.parts) {
        AddLines(inner, lines);
    }
}

constexpr const char* PLACES = R"({
"device": {"model": "m", "version": "1",
  "wordOrder": "little"},
"frames": [{"name": "f", "function": "holding", "address": 0, "count": 8}],
"enumerations": {
  "e": {"0": "Off"}},
"elements": {
  "n": {"type": "float32",
    "address": 0, "notAvailable": "0x7FC00000",
    "scale": 2},
  "l": {"address": 4, "type": "enum16",
    "mask": "0x0001", "enumeration": "e"}},
"objects": [
  {"name": "N", "value": "n"},
  {"name": "L",
    "value": "l"},
  {"name": "P", "value": {"address": 6, "type": "scaled-power-34", "count": 1,
    "exponent": {"address": 7, "type": "uint16", "order": "big"}}},
  {"name": "C", "value": {
    "chain": "sum", "inputs": {
      "x": "n", "y": {"constant": 1}}}},
  {"name": "M", "value": {"address": 0, "order": "big",
    "type": "mod10k-unsigned-2"}}],
"alarms": [{"name": "A", "priority": "LOW", "type": "t", "description": "d",
  "chain": "not equal",
  "left": "n",
  "right": {"previous": "p"}}]
})";

TEST(Explanation, StepsNameTheLinesOfTheProfileThatCausedThem) {
    const auto loaded = ProfileLoader::Load(PLACES);
    ASSERT_TRUE(loaded.profile) << Written(loaded.problems);
    const auto cache = std::make_shared<RegisterCache>(loaded.profile->model->GetFrames());
    const StandIn::StoppedClock clock(NOW);
    cache->Update(0, std::vector<std::uint16_t>(8), NOW);
    const std::string n = "@8n element9 frame9 received9 swapped3 pattern9 gathered8 raw8 scaled10 ";
    const std::string expected[] = {
        "@14 value" + n,
        "@15 value@11l element11 frame11 received11 swapped3 masked12 gathered11 raw11 label6 translated6 ",
        "@17 value@17 element17 frame17 received17 gathered17 raw17 exponent18 "
        "exponent@18 element18 frame18 received18 gathered18 raw18 ",
        "@19 value@19 computation20 parameters20 result20 x" + n + "y@21 constant21 ",
        "@22 value@22 element22 frame22 received22 swapped23 gathered23 raw23 ",
    };
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        std::string lines;
        AddLines(Explain(*loaded.profile, loaded.profile->objects[i], {cache}), lines);
        EXPECT_EQ(lines, expected[i]);
    }
    std::string lines;
    AddLines(Explain(*loaded.profile, loaded.profile->alarms.front(), {cache}, nullptr), lines);
    EXPECT_EQ(lines, "@24 left@26 value" + n + "right@27 previous27 ");
}

// Requests do and log the same with and without an observer, and it is told nothing once it is gone.
TEST(Explanation, WatchingChangesNothing) {
    const auto loaded = ProfileLoader::Load(PLACES);
    const LoadedProfile& profile = *loaded.profile;
    const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    const StandIn::StoppedClock clock(NOW);
    const auto linesOf = [](const auto& request) {
        const StandIn::CapturedLog log(Log::OrbaLogLevel::TRACE);
        request();
        return log.Joined();
    };
    for (int round = 0; round < 2; ++round) {
        for (const auto& object : profile.objects) {
            const auto explained = linesOf([&] { Explain(profile, object, {cache}); });
            const auto asked = linesOf([&] { ObjectOf(profile, cache, object.name, "", round == 0 ? 42 : 0); });
            EXPECT_EQ(explained, asked);
            EXPECT_EQ(ModbusDeviceModel::DataModel::GetStepObserver(), nullptr);
        }
        cache->Update(0, std::vector<std::uint16_t>(8), NOW);
    }
}

TEST(ExplanationThreads, EachThreadSeesTheStepsOfItsOwnRequest) {
    const auto loaded = ProfileLoader::Load(PLACES);
    const LoadedProfile& profile = *loaded.profile;
    const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    const StandIn::StoppedClock clock(NOW);
    cache->Update(0, std::vector<std::uint16_t>(8), NOW);
    const auto repeat = [&](const LoadedProfile::Object& object) {
        const json first = Explain(profile, object, {cache}).ToJson()["parts"];
        for (int i = 0; i < 200; ++i) {
            EXPECT_EQ(Explain(profile, object, {cache}).ToJson()["parts"], first);
            cache->Update(0, std::vector<std::uint16_t>(8), NOW);
        }
    };
    std::vector<std::thread> threads;
    for (const auto& object : profile.objects) {
        threads.emplace_back(repeat, std::cref(object));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace kzm::ModbusGateway
