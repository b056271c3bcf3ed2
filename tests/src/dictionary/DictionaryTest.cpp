#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

#include "dictionary/CustomAlarmElementStructure.h"
#include "dictionary/DeviceElementLookUp.h"
#include "dictionary/DynamicDeviceClasses.h"

namespace kz::orba::VortaExtensionModbus::Device::DictionaryTest {

using LookUp = DeviceElementLookUp;
using nlohmann::json;
using Sources = std::unordered_multimap<std::string, std::string>;
using enum StructureTemplate;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// "path=id,path=id".
Sources SourcesOf(const std::string& text) {
    Sources sources;
    for (const std::string& source : Split(text, ',')) {
        const auto parts = Split(source, '=');
        sources.emplace(parts.at(0), parts.at(1));
    }
    return sources;
}

// The names of the tables that the Check operations find a key in.
std::string TablesOf(const std::string& key) {
    return std::string(LookUp::CheckAlmElement(key) ? "alarm" : "") +
           (LookUp::CheckMeasurementElement(key) ? "measurement" : "") +
           (LookUp::CheckProtectionElement(key) ? "protection" : "") +
           (LookUp::CheckSwitchgearCircuitBreakerElement(key) ? "circuit-breaker" : "");
}

// The table whose name is given.
const DictionaryTable& TableOf(const std::string& name) {
    const auto tables = LookUp::GetTables();
    return **std::find_if(tables.begin(), tables.end(), [&](const auto* table) { return table->GetName() == name; });
}

std::string_view KeyOf(std::string_view key) {
    return key;
}

template <typename Mapped>
std::string_view KeyOf(const std::pair<DictionaryText, Mapped>& value) {
    return value.first;
}

// Compares a container of the dictionary with a std::set of its keys, for present and absent keys.
template <typename Container>
void ExpectOrdered(const Container& container) {
    std::set<std::string> keys;
    for (const auto& value : container) {
        EXPECT_TRUE(keys.emplace(KeyOf(value)).second) << KeyOf(value);
    }
    EXPECT_EQ(container.size(), keys.size());
    EXPECT_EQ(container.empty(), keys.empty());
    const auto isSame = [](const auto& value, const std::string& key) { return KeyOf(value) == key; };
    EXPECT_TRUE(std::equal(container.cbegin(), container.cend(), keys.begin(), keys.end(), isSame));
    EXPECT_TRUE(std::equal(container.rbegin(), container.rend(), keys.rbegin(), keys.rend(), isSame));
    EXPECT_TRUE(std::equal(container.crbegin(), container.crend(), keys.rbegin(), keys.rend(), isSame));
    std::set<std::string> wanted{"", "~", "\xff"};
    for (const std::string& key : keys) {
        wanted.merge(std::set{key, key + ' ', key.substr(0, key.size() - 1)});
    }
    const auto placeOf = [&](auto found) { return std::distance(container.begin(), found); };
    const auto expectedPlaceOf = [&](auto found) { return std::distance(keys.begin(), found); };
    for (const std::string& key : wanted) {
        SCOPED_TRACE(key);
        EXPECT_EQ(placeOf(container.lower_bound(key)), expectedPlaceOf(keys.lower_bound(key)));
        EXPECT_EQ(placeOf(container.upper_bound(key)), expectedPlaceOf(keys.upper_bound(key)));
        EXPECT_EQ(container.equal_range(key), std::pair(container.lower_bound(key), container.upper_bound(key)));
        EXPECT_EQ(placeOf(container.find(key)), expectedPlaceOf(keys.find(key)));
        EXPECT_EQ(container.count(key), keys.count(key));
        EXPECT_EQ(container.contains(key), keys.contains(key));
    }
}

json SkeletonOf(const json& structure) {
    EXPECT_EQ(structure.size(), 1U);
    return structure.at("IoTElementDynamicClassForDevice");
}

// An element of an alarm: name, value, mode and further members.
json AlarmElement(const std::string& name, json more, const json& value = nullptr) {
    more.update({{"name", name}, {"value", value}, {"mode", "Ro"}});
    return more;
}

json Alarm(const char* criticality, const char* type, const json& more) {
    json elements{{"state", AlarmElement("Alarm.ActiveState", {{"datetime", nullptr}, {"quality", nullptr}})},
                  {"criticality", AlarmElement("Alarm.Criticality", json::object(), criticality)},
                  {"type", AlarmElement("Alarm.Type", json::object(), type)}};
    elements.update(more);
    return {{"_id", nullptr}, {"name", nullptr}, {"elements", elements}};
}

TEST(Dictionary, TellsWhatIsKnownOfAnElement) {
    // clang-format off
    const std::pair<StructureTemplate, const char*> rows[] = {  // table|key|sources|name|unit|class
        {MEDIUM_PROTECTION, "alarm|15|elements.state.value=XCBR1_Pos|Alarm.CircuitBreakerOpenedAlarm||$iot.alm.CircuitBreakerOpenedAlarm"},
        {HIGH_PROTECTION, "alarm|1d|elements.state.value=G_PTOC1_Op|Alarm.GroundFaultAlarm||$iot.alm.GroundFaultAlarm"},
        {HIGH_PROTECTION_PHASES_THRESHOLD, "alarm|24|elements.state.value=CALH1_IOverloadVLoss3PhsAlm,"
         "elements.snapshot_overcurrent_threshold.value=CALH1_IOverloadThreshold|Alarm.OverCurrentVoltageLossAlarm||$iot.alm.OverCurrentVoltageLossAlarm"},
        {HIGH_PROTECTION_PHASES, "alarm|25|elements.state.value=CALH1_VLoss3PhsAlm,"
         "elements.snapshot_rms_current_phs_a.value=IA _VLoss,elements.snapshot_rms_current_phs_b.value=IB _VLoss,elements.snapshot_rms_current_phs_c.value=IC _VLoss|Alarm.VoltageLossAlarm||$iot.alm.VoltageLossAlarm"},
        {MEDIUM_PROTECTION, "alarm|5dd|elements.state.value=EF_PTOC2_OpReq,elements.state.quality=EF_PTOC2_OpReq_Qual|Alarm.EarthLeakageProtectionPreAlarm||$iot.alm.EarthLeakageProtectionPreAlarm"},
        {TIMESTAMPED_VALUE, "protection|78b|value=EF_PTOC1_Op,quality=EF_PTOC1_Op_Qual|ElPtoc.OperateStatus||$iot.protection.el_ptoc.OperateStatus"},
        {TIMESTAMPED_VALUE, "protection|8bf|value=GGIO1_ThmFault|Protection.TripThermalFaultStatus||$iot.protection.TripThermalFaultStatus"},
        {TIMESTAMPED_VALUE, "circuit-breaker|59|value=XCBR1_Pos,quality=XCBR1_Pos_Qual|CircuitBreaker.PositionInformation||$iot.switchgear.circuit_breaker.PositionInformation"},
        {UNIT_VALUE, "circuit-breaker|76e|value=SCBR1_TtlCumA2|CircuitBreaker.TotalCumulativeBreakingCurrent|A²|$iot.switchgear.circuit_breaker.TotalCumulativeBreakingCurrent"},
        {PLAIN_VALUE, "circuit-breaker|76f|value=SCBR1_AccAbr_DT|CircuitBreaker.WorstAbrasionPhs||$iot.switchgear.circuit_breaker.WorstAbrasionPhs"},
        {MEASUREMENT, "measurement|625|value=LPHD1_BatV|Measurement.BatteryVoltage|V|$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|85f|value=dV_dt_water|Measurement.WaterFlowRate|m³/s|$iot.measurement.WaterFlowRate"},
        {ENUMERATED_VALUE, "measurement|9ae|value=SPDC1_AcqEnaPhsC|Measurement.ChannelMonitoringControlPhsC||$iot.measurement.ChannelMonitoringControlPhs"},
        {MEASUREMENT, "measurement|DTMinIA;MinIA|datetime=DTMinIA,value=MinIA|ElectricalMeasurement.RmsMinCurrentPhsA|A|$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|DTMinIG_KELO;MinIG_KELO|datetime=DTMinIG_KELO,value=MinIG_KELO|ElectricalMeasurement.RmsMinCurrentEarthLeakage|A|$iot.measurement.NumericalMeasurementValue<Float>"},
        // Pairs whose date-time id does not repeat the value id.
        {MEASUREMENT, "measurement|DTMinPF;MinPFTtl|datetime=DTMinPF,value=MinPFTtl|ElectricalMeasurement.TotalRmsMinPowerFactor||$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|DTMaxkVATtl;MaxVA_Ttl|datetime=DTMaxkVATtl,value=MaxVA_Ttl|ElectricalMeasurement.TotalMaxApparentPower|VA|$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|DTPkkWAD;PkWAD|datetime=DTPkkWAD,value=PkWAD|ElectricalMeasurement.DemandMaxActivePowerPhsA|W|$iot.measurement.electrical.DemandMaxMeasurement"},
        // A date-time that is not part of the key.
        {MEASUREMENT, "measurement|PkWDDel-Rec|datetime=DTPkWDDel-Rec,value=PkWDDel-Rec|ElectricalMeasurement.DemandMaxActivePowerDeliveredLessReceived|W|$iot.measurement.electrical.DemandMaxMeasurement"},
        {TIMESTAMPED_VALUE, "measurement|ZCAP1_BrokenStStep10;ZCAP1_BrokenStStep10_Qual|value=ZCAP1_BrokenStStep10,quality=ZCAP1_BrokenStStep10_Qual|ElectricalMeasurement.BrokenStatusCapacitorBankStep10||$iot.measurement.DiscreteMeasurementValue<String>"},
        {MEASUREMENT, "measurement|Hz|value=Hz|ElectricalMeasurement.RmsFrequency|Hz|$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|H11VAB_Mag|value=H11VAB_Mag|ElectricalMeasurement.RatioFundamentalVoltageHarmonic11PhsAB||$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|thd_VLN|value=thd_VLN|ElectricalMeasurement.RmsThdVoltageLineToNeutral||$iot.measurement.NumericalMeasurementValue<Float>"},
        {TIMESTAMPED_VALUE, "measurement|MaxVUnbalLL_PH|value=MaxVUnbalLL_PH|ElectricalMeasurement.PhaseOfMaxUnbalanceVoltageLineToLine||$iot.measurement.DiscreteMeasurementValue<String>"},
        {MEASUREMENT, "measurement|WHr2Del+Rec|value=WHr2Del+Rec|ElectricalMeasurement.ActiveEnergyDeliveredPlusReceivedTariffRate2|Wh|$iot.measurement.NumericalMeasurementValue<Integer>"},
        {MEASUREMENT, "measurement|VAHrCRec_Nonreset|value=VAHrCRec_Nonreset|ElectricalMeasurement.ApparentEnergyReceivedNonResettablePhsC|VAh|$iot.measurement.NumericalMeasurementValue<Integer>"},
        {MEASUREMENT, "measurement|SPDC1_PulseNPRPhsBAng07|value=SPDC1_PulseNPRPhsBAng07|ElectricalMeasurement.PartialDischargePulseRatePhsBAngle07|1/s|$iot.measurement.NumericalMeasurementValue<Float>"},
        {MEASUREMENT, "measurement|TCM1_PM2_5|value=TCM1_PM2_5|EnvironmentalMeasurement.ParticulateMatter2_5Concentration||$iot.measurement.NumericalMeasurementValueWithInformation<Float>"},
        // Unknown keys: part of a key and the id that feeds an element are not keys.
        {MEASUREMENT, "|||||$iot.measurement.NumericalMeasurementValue"},
        {MEASUREMENT, "|MinIA||||$iot.measurement.NumericalMeasurementValue"},
        {MEASUREMENT, "|DTMinIA;MinIA ||||$iot.measurement.NumericalMeasurementValue"},
        {MEASUREMENT, "|hz||||$iot.measurement.NumericalMeasurementValue"},
        {MEASUREMENT, "|XCBR1_Pos||||$iot.measurement.NumericalMeasurementValue"},
        {MEASUREMENT, "|\x7f||||$iot.measurement.NumericalMeasurementValue"}};
    // clang-format on
    for (const auto& [structure, row] : rows) {
        SCOPED_TRACE(row);
        const auto parts = Split(row, '|');
        const std::string &table = parts.at(0), &key = parts.at(1);
        const Sources sources = SourcesOf(parts.at(2));
        EXPECT_EQ(TablesOf(key), table);
        EXPECT_EQ(LookUp::GetPdmId(key), sources);
        EXPECT_EQ(LookUp::GetName(key), parts.at(3));
        EXPECT_EQ(LookUp::GetUnit(key), parts.at(4));
        EXPECT_EQ(LookUp::GetClass(key), parts.at(5));
        EXPECT_EQ(LookUp::GetStructure(key), BuildStructure(structure));
        EXPECT_TRUE(table.empty() || TableOf(table).at(key).structure == structure);
        for (const char* path : {"value", "datetime", "quality", "elements.state.value"}) {
            const auto source = sources.find(path);
            EXPECT_EQ(LookUp::GetMappedAttributePath(key, path), source == sources.end() ? "" : source->second);
        }
    }
}

TEST(Dictionary, ContainersAreOrderedMapsAndASet) {
    std::set<std::string_view> names, keys;
    for (const DictionaryTable* table : LookUp::GetTables()) {
        SCOPED_TRACE(table->GetName());
        EXPECT_FALSE(table->empty());
        ExpectOrdered(*table);
        for (const auto& [key, entry] : *table) {
            EXPECT_TRUE(keys.insert(key).second && names.insert(entry.name).second) << key << " " << entry.name;
            EXPECT_EQ(&table->at(key), &entry);
            EXPECT_EQ(LookUp::GetName(key) + LookUp::GetUnit(key), std::string(entry.name) + std::string(entry.unit));
            ExpectOrdered(entry.sources);
        }
    }
    ExpectOrdered(DYNAMIC_DEVICE_CLASS_NAMES);
    ExpectOrdered(AttributeSources());
    const AttributeSources& sources = TableOf("protection").at("78b").sources;
    EXPECT_EQ(sources.at("quality"), "EF_PTOC1_Op_Qual");
    EXPECT_EQ(sources.find("value")->second, "EF_PTOC1_Op");
    EXPECT_EQ(sources.Find("datetime"), "");
    EXPECT_THROW(sources.at("datetime"), std::out_of_range);
    EXPECT_THROW(TableOf("alarm").at("Hz"), std::out_of_range);
}

TEST(Dictionary, EntriesSourcesAndTemplatesOutliveWhatTheyWereReachedBy) {
    std::string sources;
    for (const auto& source : LookUp::mIotAlmFunctionElement.find("25")->second.sources) {
        sources += std::string(source.first) + '=' + std::string(source.second) + '\n';
    }
    EXPECT_EQ(sources, R"(elements.snapshot_rms_current_phs_a.value=IA _VLoss
elements.snapshot_rms_current_phs_b.value=IB _VLoss
elements.snapshot_rms_current_phs_c.value=IC _VLoss
elements.state.value=CALH1_VLoss3PhsAlm
)");
    const auto& entry = LookUp::mIotAlmFunctionElement.find("1d")->second;
    const auto& [key, copied] = *std::next(DictionaryTable(LookUp::mIotAlmFunctionElement).begin());
    EXPECT_EQ(&copied, &entry);
    EXPECT_EQ(key, "1d");
    EXPECT_EQ(DictionaryEntry(entry).sources.begin()->second, "G_PTOC1_Op");
    const json& structure = LookUp::mIotAlmFunctionElement.find("15")->second.structure;
    EXPECT_EQ(structure, BuildStructure(MEDIUM_PROTECTION));
    EXPECT_EQ(&structure, &LookUp::mIotAlmFunctionElement.find("5dd")->second.structure.get());
    const json copy = entry.structure;
    EXPECT_EQ(copy, BuildStructure(entry.structure));
    EXPECT_EQ(StructureReference(static_cast<StructureTemplate>(200)).get(), nullptr);
    static_assert(!std::is_convertible_v<StructureReference, int>);
}

TEST(Dictionary, TextsAreStringViewsThatBecomeStringsAndJson) {
    const auto& [key, entry] = *LookUp::mIotMeasurementFunctionElement.find("DTMinIA;MinIA");
    const std::string_view view = key;
    const std::string text = key;
    EXPECT_EQ(view.data(), key.data());
    EXPECT_EQ(text + '|' + std::string(key.begin(), key.end()), "DTMinIA;MinIA|DTMinIA;MinIA");
    EXPECT_EQ(key.size(), key.length());
    EXPECT_TRUE(key == text && view == key && key == "DTMinIA;MinIA" && key != entry.name && "DTMinIA" < key);
    EXPECT_TRUE(key > entry.unit && key.starts_with("DT") && !key.starts_with("T") && key.ends_with("MinIA"));
    EXPECT_EQ(key[7], ';');
    EXPECT_EQ(key.find("Min") * 100 + key.find("Min", 3) * 10 + key.find("x") - key.npos, 280U);
    EXPECT_EQ(key.rfind("Min") * 10 + key.rfind("Min", 7), 82U);
    EXPECT_EQ(key.substr(key.find(";") + 1), "MinIA");
    EXPECT_EQ(key.substr(2, 3), "Min");
    EXPECT_TRUE(DictionaryText().empty() && DictionaryText() == "" && !key.empty());
    std::ostringstream stream;
    stream << entry.unit << json{{"name", entry.name}};
    EXPECT_EQ(stream.str(), R"(A{"name":"ElectricalMeasurement.RmsMinCurrentPhsA"})");
}

TEST(Dictionary, ValueStructuresHaveTheMembersThatSuitTheirUse) {
    const json common{{"_id", nullptr}, {"name", nullptr}, {"value", nullptr}, {"mode", "Ro"}, {"quality", nullptr}};
    const std::map<StructureTemplate, json> more{
        {MEASUREMENT, {{"datetime", nullptr}, {"unit", ""}}},
        {TIMESTAMPED_VALUE, {{"datetime", nullptr}}},
        {ENUMERATED_VALUE, {{"mode", "Rw"}, {"locked", false}, {"enum", {"On", "Off"}}}},
        {PLAIN_VALUE, json::object()},
        {STEPPED_VALUE, {{"mode", "Rw"}, {"locked", false}, {"min", nullptr}, {"max", nullptr}, {"step", nullptr}}},
        {UNIT_VALUE, {{"unit", ""}}}};
    for (const auto& [structure, members] : more) {
        json expected = common;
        expected.update(members);
        EXPECT_EQ(SkeletonOf(BuildStructure(structure)), expected);
    }
    EXPECT_EQ(BuildStructure(static_cast<StructureTemplate>(200)), nullptr);
}

TEST(Dictionary, AlarmStructuresCarryWhatTheAlarmNeeds) {
    const json snapshot{{"datetime", nullptr}, {"quality", nullptr}, {"unit", "A"}};
    const auto snapshotOf = [&](const std::string& what) {
        return AlarmElement("ElectricalMeasurement.Snapshot" + what, snapshot);
    };
    const json phases{{"snapshot_rms_current_phs_a", snapshotOf("RmsCurrentPhsA")},
                      {"snapshot_rms_current_phs_b", snapshotOf("RmsCurrentPhsB")},
                      {"snapshot_rms_current_phs_c", snapshotOf("RmsCurrentPhsC")}};
    json threshold = phases;
    threshold["snapshot_overcurrent_threshold"] = snapshotOf("OverCurrentThreshold");
    const json dated{{"datetime", nullptr}};
    const json handled{{"acknowledgment_state", AlarmElement("Alarm.AcknowledgmentState", dated)},
                       {"shelve_state", AlarmElement("Alarm.ShelveState", dated)},
                       {"detection_state", AlarmElement("Alarm.DetectionState", dated)},
                       {"confirmation_state", AlarmElement("Alarm.ConfirmationState", dated)}};
    const json none = json::object();
    const std::map<std::string, json> skeletons{{"24", Alarm("High", "Protection", threshold)},
                                                {"25", Alarm("High", "Protection", phases)},
                                                {"484", Alarm("High", "Protection", none)},  // a trip
                                                {"55e", Alarm("Low", "Protection", none)},
                                                {"5e1", Alarm("Medium", "Protection", none)},  // a warning of one
                                                {"87f", Alarm("High", "Protection", handled)},
                                                {"5e4", Alarm("High", "AssetHealth", none)},
                                                {"561", Alarm("Medium", "AssetHealth", none)},
                                                {"889", Alarm("Low", "AssetHealth", none)},
                                                {"21", Alarm("High", "AssetHealth", handled)},
                                                {"23", Alarm("Medium", "AssetHealth", handled)},
                                                {"22", Alarm("Low", "AssetHealth", handled)}};
    for (const auto& [key, skeleton] : skeletons) {
        EXPECT_EQ(SkeletonOf(LookUp::GetStructure(key)), skeleton) << key;
    }
    EXPECT_EQ(SkeletonOf(BuildStructure(LOW_PROTECTION_HANDLED)), Alarm("Low", "Protection", handled));
}

TEST(Dictionary, CustomAlarmsGetACopyOfTheirStructure) {
    const json expected = json::parse(R"({"_id": null, "name": null, "alias": null, "elements": {
        "state": {"name": "Alarm.ActiveState", "mode": "Ro", "value": null, "datetime": null, "quality": null},
        "criticality": {"name": "Alarm.Criticality", "mode": "Ro", "value": null},
        "type": {"name": "Alarm.Type", "mode": "Ro", "value": null},
        "customer_alarm_name": {"name": "Alarm.CustomerAlarmName", "mode": "Rw", "value": null,
                                "locked": true, "max_length": 50},
        "customer_alarm_description": {"name": "Alarm.CustomerAlarmDescription", "mode": "Rw", "value": null,
                                       "locked": true, "max_length": 500}}})");
    CustomAlarmElementStructure::GetStructure()["IoTElementDynamicClassForDevice"]["name"] = "changed";
    EXPECT_EQ(SkeletonOf(CustomAlarmElementStructure::GetStructure()), expected);
}

TEST(Dictionary, DynamicClassesAreThoseOfItsRowsButOneAndOneMore) {
    std::set<std::string_view> classes{"$iot.alm.TripCircuitSupervisionTrippedAlarm"};
    for (const DictionaryTable* table : LookUp::GetTables()) {
        for (const auto& [key, entry] : *table) {
            classes.insert(entry.className);
        }
    }
    EXPECT_EQ(classes.erase("$iot.switchgear.circuit_breaker.WorstAbrasionPhs"), 1U);
    EXPECT_EQ(classes,
              std::set<std::string_view>(DYNAMIC_DEVICE_CLASS_NAMES.begin(), DYNAMIC_DEVICE_CLASS_NAMES.end()));
    for (const std::string_view name : classes) {
        EXPECT_TRUE(IsDynamicDeviceClassName(name)) << name;
    }
    for (const char* name : {"", "$iot.measurement.NumericalMeasurementValue", "$iot.alm.groundfaultalarm", "~",
                             "$iot.switchgear.circuit_breaker.WorstAbrasionPhs"}) {
        EXPECT_FALSE(IsDynamicDeviceClassName(name)) << name;
    }
}

}  // namespace kz::orba::VortaExtensionModbus::Device::DictionaryTest
