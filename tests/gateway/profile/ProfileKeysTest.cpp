#include <numeric>

#include "edm/modbus/Vorta.h"
#include "gateway/profile/ProfileTesting.h"

namespace kzm::ModbusGateway::ProfileKeysTest {

using namespace nlohmann::literals;

// One element or object per line, so that test rows can name lines.
const std::string PROFILE = R"({
"frames": [{"name": "a", "function": "holding", "address": 0, "count": 8}],
"enumerations": {"alarm": {"0": "Inactive", "1": "Active"}, "validity": {"0": "Invalid", "1": "Good"}},
"elements": {
"MinIA": {"address": 0, "type": "int16"},
"DTMinIA": {"address": 1, "type": "datetime-3-registers"},
"G_PTOC1_Op": {"address": 4, "type": "enum16", "mask": "0x0001", "enumeration": "alarm"},
"G_PTOC1_Op_Qual": {"address": 4, "type": "enum16", "mask": "0x0002", "enumeration": "validity"},
"CALH1_VLoss3PhsAlm": {"address": 4, "type": "enum16", "mask": "0x0004", "enumeration": "alarm"},
"IB _VLoss": {"address": 5, "type": "int16"}},
"objects": [
{"key": "DTMinIA;MinIA"},
{"key": "795", "labels": {"Active": true, "Inactive": false}},
{"key": "1d"},
{"key": "25", "timestamp": "DTMinIA", "elements": {"snapshot_rms_current_phs_a": {"value": {"constant": 7}}}},
{"key": "IA", "name": "Measurement.Feeder", "alias": "east", "unit": "kA", "value": {"address": 6, "type": "int16"}},
{"key": "IA", "alias": "west", "unit": "kA", "plain": true, "value": {"address": 7, "type": "int16-to-float"}},
{"key": "394", "value": {"address": 7, "count": 1, "type": "decimal-text"}}]
})";

json Filled(const LoadedProfile& profile, std::size_t index, const std::shared_ptr<RegisterCache>& cache) {
    const auto& object = profile.objects.at(index);
    kz::orba::VortaORBAObject target(object.key, object.name, object.alias, object.structure);
    EXPECT_EQ(static_cast<int>(profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target)), 0);
    return target.GetValue();
}

json Snapshot(const char* name, const json& value) {
    json snapshot{{"name", name}, {"mode", "Ro"}, {"unit", "A"}, {"value", value}};
    snapshot["quality"] = value.is_null() ? json() : "Good";
    snapshot["datetime"] = value.is_null() ? json() : NOW_TEXT;
    return snapshot;
}

TEST(ProfileKeys, AnObjectThatIsAKeyHasTheDictionarysStructureFilled) {
    const StoppedClock clock(NOW);
    const auto loaded = ProfileLoader::Load(PROFILE);
    ASSERT_EQ(Written(loaded.problems), "");
    const LoadedProfile& profile = *loaded.profile;
    const auto cache = CacheOf(profile, {21, 0x0302, 0x7E0E, 0x0521, 0x0005, 1180, 3, 65535});
    EXPECT_EQ(Filled(profile, 0, cache), R"({"_id": "DTMinIA;MinIA", "name": "ElectricalMeasurement.RmsMinCurrentPhsA",
        "value": 21, "mode": "Ro", "datetime": "2026-03-02T14:05:33.000+00:00", "quality": "Good", "unit": "A"})"_json);
    const json trip = Filled(profile, 1, cache);
    EXPECT_EQ((json{trip["_id"], trip["value"], trip["quality"]}), (json{"795", true, "Bad"}));
    const json alarm = Filled(profile, 2, cache);
    EXPECT_EQ(alarm["elements"]["state"], R"({"name": "Alarm.ActiveState", "value": "Active", "mode": "Ro",
        "datetime": "1970-01-01T00:16:40.000Z", "quality": "Good"})"_json);
    EXPECT_EQ(alarm["elements"]["criticality"]["value"], "High");
    // What the profile states takes precedence over the dictionary; nothing feeds phase C.
    const json loss = Filled(profile, 3, cache)["elements"];
    EXPECT_EQ((json{loss["state"]["value"], loss["state"]["datetime"]}),
              (json{"Active", "2026-03-02T14:05:33.000+00:00"}));
    EXPECT_EQ(loss["snapshot_rms_current_phs_a"], Snapshot("ElectricalMeasurement.SnapshotRmsCurrentPhsA", 7));
    EXPECT_EQ(loss["snapshot_rms_current_phs_b"], Snapshot("ElectricalMeasurement.SnapshotRmsCurrentPhsB", 1180));
    EXPECT_EQ(loss["snapshot_rms_current_phs_c"], Snapshot("ElectricalMeasurement.SnapshotRmsCurrentPhsC", nullptr));
    const json feeder = Filled(profile, 4, cache);
    EXPECT_EQ((json{feeder["name"], feeder["unit"], profile.objects[4].alias}),
              (json{"Measurement.Feeder", "kA", "east"}));
    EXPECT_EQ(Filled(profile, 5, cache)["datetime"], nullptr);
    EXPECT_EQ(Filled(profile, 6, cache)["name"], "PhysicalIdentification.SerialNumber");
    const auto information = profile.model->GetMeasurementInformation("DTMinIA;MinIA");
    EXPECT_EQ(information.mUnit, "A");
    EXPECT_EQ(static_cast<int>(information.mNumberOfRegisters), 1);
}

TEST(ProfileKeys, CustomKeysCarryAliasesOfAnyBytes) {
    std::string everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    for (const std::string& alias : {everyByte, std::string("\xE7\x9B\xA4\xE5\x86\x85"), std::string(1, '\0'),
                                     std::string("_5f"), std::string("\xFF\xC3\x28")}) {
        std::string key = alias;
        edm::modbus::Vorta::GetCustomMeasurementNameCodec().Encode(key);
        std::string alarmKey = alias;
        edm::modbus::Vorta::GetCustomAlarmNameCodec().Encode(alarmKey);
        const auto loaded = ProfileLoader::Load(
            R"({"frames": [{"name": "a", "function": 3, "address": 0, "count": 1}], "objects": [{"key": ")" + key +
            R"(", "unit": "°C", "value": {"address": 0, "type": "int16"}}], "alarms": [{"key": ")" + alarmKey +
            R"(", "name": "Hot", "priority": "LOW", "chain": "greater", "left": {"object": ")" + key +
            R"("}, "right": {"constant": 90}}]})");
        ASSERT_EQ(Written(loaded.problems), "");
        const LoadedProfile& profile = *loaded.profile;
        const auto cache = CacheOf(profile, {91});
        const StoppedClock clock(NOW);
        EXPECT_EQ(profile.objects[0].alias, alias);
        const json object = Filled(profile, 0, cache);
        EXPECT_EQ((json{object["_id"], object["name"], object["unit"], object["value"]}),
                  (json{key, "Measurement.CustomMeasurement", "°C", 91}));
        EXPECT_EQ(profile.model->GetMeasurementInformation(key).mUnit, "°C");
        kz::orba::VortaORBAObject alarm("", "Alarm.CustomAlarm", alias, profile.alarms[0].structure);
        EXPECT_EQ(static_cast<int>(profile.model->GetCustomAlarmVortaObjectValue(cache, false, alarm, nullptr)), 0);
        EXPECT_EQ(alarm.GetValue()["_id"], alarmKey);
        EXPECT_EQ(alarm.GetValue()["alias"], alias);
        EXPECT_EQ(alarm.GetValue()["elements"]["state"]["value"], "Active");
    }
}

TEST(ProfileKeys, NameAndAliasMakeTheKeyOfACustomMeasurement) {
    const auto loaded = ProfileLoader::Load(
        R"({"frames": [{"name": "a", "function": 3, "address": 0, "count": 1}], "objects": [
            {"name": "Measurement.CustomMeasurement", "alias": "a b", "unit": "A", "value": {"constant": 1}},
            {"name": "Measurement.CustomMeasurement", "alias": "c", "unit": "V", "value": {"address": 0, "type": 2}}]})");
    ASSERT_EQ(Written(loaded.problems), "");
    EXPECT_EQ(loaded.profile->objects[0].key, "7b8a_20b");
    std::string unit;
    loaded.profile->model->GetUnit("7b8c", unit);
    EXPECT_EQ(unit, "V");
}

TEST(ProfileKeys, AnElementWithoutNameFeedsOnlyWhoNamesIt) {
    const auto loaded = ProfileLoader::Load(
        R"({"frames": [{"name": "a", "function": 3, "address": 0, "count": 1}],
            "elements": {"": {"address": 0, "type": "int16"}},
            "objects": [{"name": "Level", "value": ""}, {"key": "IA", "value": ""}]})");
    EXPECT_EQ(Written(loaded.problems), "");
}

TEST(ProfileKeys, FaultsAreToldWithTheirRemedy) {
    ExpectOneProblemEach(PROFILE, R"(
"key": "1d" => "key": "minia" => 14 /objects/2/key: the dictionary has no key "minia" => did you mean "DTMinIA;MinIA"
"key": "1d" => "key": "XCBR1_Pos" => 14 /objects/2/key: the dictionary has no key "XCBR1_Pos" => did you mean "15" or "59"?
"key": "394" => "key": "7b8" => 18 /objects/6/key: "7b8" is not a key: an encoded alias is missing
"key": "394" => "key": "7b8_zz" => 18 /objects/6/key: "7b8_zz" is not a key: 
"key": "394" => "key": "86bA" => 18 /objects/6/key: this is the key of a custom alarm => "alarms"
{"key": "394", "value": {"address": 7, "count": 1, "type": "decimal-text"}} => {"key": "VAB"} => 18 /objects/6: nothing provides the value; needed: a "value" here, or the element "VAB" under "elements"
"snapshot_rms_current_phs_a": {"value": {"constant": 7}} => "snapshot_rms_current_phs_c": {"quality": {"constant": "Good"}} => 15 /objects/3/elements/snapshot_rms_current_phs_c: nothing provides the value of the element path => the element "IC _VLoss"
"G_PTOC1_Op_Qual": {"address": 4, "type": "enum16", "mask": "0x0002", "enumeration": "validity"} => "G_PTOC1_Op_Qual": {"address": 4, "type": "int16"} => 13 /objects/1: the element "G_PTOC1_Op_Qual" cannot be the "quality" => needed: a text
{"key": "1d"} => {"key": "DTMinIA;MinIA"} => 14 /objects/2/key: the object "ElectricalMeasurement.RmsMinCurrentPhsA" is already defined
"alias": "west", "unit": "kA" => "alias": "west", "unit": "mA" => warning 17 /objects/5/unit: all objects of one key share one unit => "kA" is used here, too, instead of "mA")");
}

}  // namespace kzm::ModbusGateway::ProfileKeysTest
