#include "gateway/diagnosis/Explanation.h"

#include "gateway/capture/Capture.h"
#include "gateway/diagnosis/Recomputing.h"
#include "gateway/profile/ProfileTesting.h"
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

}  // namespace
}  // namespace kzm::ModbusGateway
