#include "gateway/json/ProblemText.h"
#include "gateway/profile/ProfileTesting.h"
#include "kzm/StandIn/CapturedLog.h"

namespace kzm::ModbusGateway::ProfileSectionsTest {

// One element or object per line, so that test rows can name lines.
const std::string PROFILE = R"({
"frames": [
{"name": "a", "function": "holding", "address": 0, "count": 10},
{"name": "b", "function": "input", "address": 50, "count": 4}],
"enumerations": {"state": {"0": "Off", "1": "On"}},
"elements": {
"sum": {"chain": "sum", "inputs": {"x": "one", "y": {"address": 50, "type": "int16"}}},
"one": {"address": 0, "type": "int16", "notAvailable": "0x8000"},
"state": {"address": 1, "type": "enum16", "enumeration": "state"}},
"objects": [
{"name": "Power", "value": {"chain": "scale10", "inputs": {"value": "sum", "exponent": {"address": 2, "type": "int16"}}}},
{"name": "Level", "labels": {"High": 2}, "value": {"chain": "choice by value", "inputs": {"value": {"chain": "less", "inputs": {"left": "sum", "right": {"constant": 10}}}}, "settings": {"labels": {"true": "Low", "false": "High"}}}},
{"name": "Closed", "value": {"chain": "equal", "inputs": {"left": "state", "right": {"constant": "On"}}}},
{"name": "Energy", "value": {"address": 51, "count": 2, "type": "scaled-power-36", "notAvailable": "0x0000FFFE", "exponent": {"address": 3, "type": "int16", "notAvailable": "0x8000"}}},
{"name": "Group", "value": "one", "elements": {"x": {"value": "one"}}}],
"alarms": [
{"name": "Over", "alias": "over", "priority": "HIGH", "type": "T", "description": "D", "chain": "greater", "left": {"object": "Power"}, "right": {"constant": 5}, "settings": {"deadBand": 0.5}},
{"name": "Moved", "alias": "moved", "priority": "LOW", "changes": true, "chain": "not equal", "left": {"previous": "Last"}, "right": "state"},
{"name": "Band", "object": "Alarm.Band", "priority": "LOW", "chain": "outside band", "left": "one", "settings": {"low": 0, "high": 9}}],
"services": [
{"name": "Power", "service": 7, "elements": {"limit": {"address": 4, "type": "uint16", "mask": "0x00FF"}, "base": "state"}},
{"name": "Power", "alias": "x", "service": -1, "elements": {"value": "state"}}],
"subgraphs": {"0": ["Power", "Alarm.CustomAlarm", "Closed"], "8": ["Power"]}
})";

// A loaded profile and a device whose registers are all 0.
struct Device {
    explicit Device(const std::string& text = PROFILE) : loaded(ProfileLoader::Load(text)) {
        EXPECT_EQ(Written(loaded.problems), "");
        cache = CacheOf(*loaded.profile, {});
        Set(1, {});
    }
    void Set(std::uint8_t frame, std::vector<std::uint16_t> registers, RegisterCache::Quality quality = QUALITY_GOOD) {
        registers.resize(loaded.profile->model->GetFrames()[frame].mLength);
        cache->Update(frame, registers, NOW, quality);
    }
    json ValueOf(const std::string& name, int status = 0) {
        const json object = ObjectOf(*loaded.profile, cache, name, "", status);
        return {object.value("value", json()), object["quality"]};
    }

    StoppedClock clock{NOW};
    StandIn::CapturedLog unseen;
    ProfileLoader::Result loaded;
    std::shared_ptr<RegisterCache> cache;
};

TEST(ProfileComputations, HaveTheWorstQualityTheFramesAndTheClassOfWhatTheyAreMadeOf) {
    Device device;
    device.Set(0, {7, 1, 0xFFFF});
    device.Set(1, {0xFFFE}, QUALITY_BAD);
    EXPECT_EQ(device.ValueOf("Power"), json({0.5, "Bad"}));
    EXPECT_EQ(device.ValueOf("Level"), json({"Low", "Bad"}));
    EXPECT_EQ(device.ValueOf("Closed"), json({true, "Good"}));
    device.Set(0, {0x8000});
    EXPECT_EQ(device.ValueOf("Power", 42), json({nullptr, "Bad"}));
    EXPECT_EQ(device.loaded.profile->objects[1].adapter->GetFrameIndexes(), (std::set<std::uint8_t>{0, 1}));
    EXPECT_EQ(device.loaded.profile->objects[0].precisions.at(""), NumberPrecision::DIGITS_15);
    for (const auto& [name, expected] : {std::pair{"Power", "$iot.measurement.NumericalMeasurementValue<Float>"},
                                         {"Closed", "$iot.measurement.DiscreteMeasurementValue<Boolean>"},
                                         {"Level", "$iot.measurement.DiscreteMeasurementValue<String>"}}) {
        std::string className;
        device.loaded.profile->model->GetClassName(name, className);
        EXPECT_EQ(className, expected);
    }
}

TEST(ProfileComputations, EachFaultGivesOneProblem) {
    ExpectOneProblemEach(PROFILE, R"(
"sum", "inputs" => "som", "inputs" => 7 /elements/sum/chain: there is no chain "som" => did you mean "sum"?
"x": "one", => => 7 /elements/sum/inputs: the chain "sum" cannot have 1 inputs => two or more
"x": "one" => "x": "onne" => 7 /elements/sum/inputs/x: there is no element => did you mean "one"?
"x": "one" => "x": "state" => 7 /elements/sum/inputs/x: this element cannot be an input of the chain "sum" => needed: a number
"exponent": { => "exponents": { => 11 /objects/0/value/inputs: the chain "scale10" does not have the inputs => exactly "value", "exponent"
2, "type": "int16" => 2, "type": "int16-to-float" => 11 /objects/0/value/inputs/exponent => a whole number
{"constant": "On"} => {"constant": 1} => 13 /objects/2/value/inputs/ => like its other inputs
{"constant": "On"} => {"constant": null} => 13 /objects/2/value/inputs/right => needed: a text
"settings": { => "settings": {"defalt": "x", => 12 /objects/1/value/settings/defalt: the chain "choice by value" has no setting => "default"
, "settings": {"labels": {"true": "Low", "false": "High"}} => => 12 /objects/1/value: the chain => needs the setting "labels"
"chain": "less" => "type": 3, "chain": "less" => 12 /objects/1/value/inputs/value/type: there is no such member => allowed: "chain", "inputs", "settings"
"value": "sum" => "value": null => 11 /objects/0/value/inputs/value: null is not allowed => "chain" and "inputs"
{"address": 0, "type": "int16", "notAvailable": "0x8000"} => {"chain": "linear", "inputs": {"v": "sum"}} => 7 /elements/sum/inputs/x: the element needs itself => "one" needs "sum" needs "one"
"name": "Level", => "name": "Level", "timestamp": "state", => 12 /objects/1/timestamp: this element cannot => a date and time
"name": "Level", => "name": "Level", "timestamp": {"address": 50, "type": "text", "count": 2, "scale": 2}, => warning 12 /objects/1/timestamp/scale: "scale" has no effect
"name": "Level", => "name": "Level", "timestamp": "sum", => 12 /objects/1/timestamp: this element cannot => a date and time
"elements": { => "elements": {"more": {"chain": "average", "inputs": {"a": "sum", "b": "sum"}}, => warning 6 /elements/more: no object uses)");
}

TEST(ProfileComputations, AValueTakesABoundedNumberOfElementsAndComputations) {
    const struct {
        const char* form;
        const char* last;  // needed by the others
    } rows[] = {{R"("e%d": {"address": 51, "count": 2, "type": "scaled-power-36", "exponent": "e%e"},)", "e1000"},
                {R"("e%d": {"chain": "sum", "inputs": {"x": "e%e", "y": "e%e"}},)", "e1000"},
                {R"("e%e": {"chain": "linear", "inputs": {"x": "e%d"}},)", "e1399"}};
    for (const auto& row : rows) {
        std::string elements;
        for (int i = 1; i < 400; ++i) {
            std::string element = Replaced(row.form, "%d", std::to_string(1000 + i));
            while (element.find("%e") != std::string::npos) {
                element = Replaced(element, "%e", std::to_string(999 + i));
            }
            elements += element;
        }
        elements += Quoted(row.last) + R"(: {"constant": 1},)";
        const auto loaded = ProfileLoader::Load(Replaced(PROFILE, "\"elements\": {", "\"elements\": {" + elements));
        EXPECT_NE(Written(loaded.problems).find("takes more than 256 elements"), std::string::npos);
    }
}

TEST(ProfileScaledPowers, TakeTheirExponentFromAnotherElement) {
    Device device;
    // The raw value above 65536, the exponent, their qualities, the status and the value.
    using Quality = RegisterCache::Quality;
    const std::tuple<std::uint16_t, std::uint16_t, Quality, Quality, int, json> rows[] = {
        {0, 0, QUALITY_GOOD, QUALITY_GOOD, 0, {65536.0, "Good"}},
        {1, 0xFFFE, QUALITY_QUESTIONABLE, QUALITY_GOOD, 0, {655.37, "Questionable"}},
        {1, 22, QUALITY_QUESTIONABLE, QUALITY_BAD, 0, {65537e22, "Bad"}},
        {1, 23, QUALITY_GOOD, QUALITY_GOOD, 28, {nullptr, "Bad"}},
        {1, 0x8001, QUALITY_GOOD, QUALITY_GOOD, 28, {nullptr, "Bad"}},
        {1, 0x8000, QUALITY_GOOD, QUALITY_GOOD, 42, {nullptr, "Bad"}}};
    for (const auto& [raw, exponent, quality, exponentsQuality, status, expected] : rows) {
        device.Set(0, {0, 0, 0, exponent}, exponentsQuality);
        device.Set(1, {0, 1, raw}, quality);
        EXPECT_EQ(device.ValueOf("Energy", status), expected) << exponent;
    }
    device.Set(1, {0, 0, 0xFFFE});
    EXPECT_EQ(device.ValueOf("Energy", 42), json({nullptr, "Bad"}));
    device.Set(0, {});
    device.Set(1, {0, 0, 0});
    EXPECT_EQ(device.ValueOf("Energy"), json({0, "Good"}));
    device.cache->Update(0, std::vector<std::uint16_t>(10), NOW - 12'001);
    EXPECT_EQ(device.ValueOf("Energy", 42), json({nullptr, "Bad"}));
    EXPECT_EQ(device.loaded.profile->objects[3].adapter->GetFrameIndexes(), (std::set<std::uint8_t>{0, 1}));
    EXPECT_EQ(device.loaded.profile->objects[3].adapter->GetModbusMeasurementInformation().mRegisterAddress, 51);

    ExpectOneProblemEach(PROFILE, R"(
, "exponent": {"address": 3, "type": "int16", "notAvailable": "0x8000"} => => 14 /objects/3/value: the type "scaled-power-36" needs => "exponent"
{"address": 3, "type": "int16", "notAvailable": "0x8000"} => "state" => 14 /objects/3/value/exponent: this element cannot => a whole number
"scaled-power-36" => "uint32" => 14 /objects/3/value/exponent: values of the type "uint32" have no
"scaled-power-36" => 36, "order": "little" => warning 14 /objects/3/value/order: "order" has no effect)");
}

TEST(ProfileAlarms, EachFaultGivesOneProblem) {
    ExpectOneProblemEach(PROFILE, R"(
"HIGH" => "high" => 17 /alarms/0/priority: "high" is not allowed here; did you mean "HIGH"? Allowed: => "LOW", "MEDIUM", "HIGH"
"greater" => "sum" => 17 /alarms/0/chain: the chain "sum" does not give true or false => greater
"deadBand": 0.5 => "deadBand": -1 => 17 /alarms/0/settings/deadBand: => from 0 on
"right": {"constant": 5}, => => 17 /alarms/0: the chain "greater" needs the operand => right
{"constant": 5} => {"constant": true} => 17 /alarms/0/right: this element cannot => a number
{"object": "Power"} => {"object": "power"} => 17 /alarms/0/left/object: there is no object "power" => did you mean "Power"?
{"object": "Power"} => {"object": "Group"} => 17 /alarms/0/left/object: this object cannot be an operand => one value
{"object": "Power"} => {"object": "Level"} => 17 /alarms/0/left: this element cannot => a number
{"object": "Power"} => {"object": "Power", "type": 2} => 17 /alarms/0/left/type: there is no => "alias", "object"
{"previous": "Last"} => "state" => 18 /alarms/1/changes: an alarm that reports changes => "previous"
"right": "state" => "right": {"constant": "On"} => 18 /alarms/1/left: the opposite operand => a measurement
"name": "Moved" => "name": "MovedL", "alias": "m", "priority": "LOW", "chain": "equal", "left": "one", "right": {"previous": "ast"}}, {"name": "Moved" => 18 /alarms/2/left: the previous value would be kept under the name "MovedLast" => line 18
"moved" => "over" => 18 /alarms/1: the object "Alarm.CustomAlarm" => alias
"Alarm.Band" => "Level" => 19 /alarms/2: the object "Level" is already defined
"left": "one" => "left": "one", "right": "one" => 19 /alarms/2/right: the chain "outside band" uses only the operand "left"
"left": "one" => "left": {"previous": ""} => 19 /alarms/2/left/previous: "" is not allowed => at least one)");
}

TEST(ProfileAlarms, OfAFaultyObjectGiveNoProblemOfTheirOwn) {
    const char* const rows[][3] = {
        {R"("key": "1d", "value": {"address": 99, "type": "int16"})", R"("1d")", "address: no frame holds"},
        {R"("name": "Flow", "alias": "x", "value": {"address": 99, "type": "int16"})", R"("Flow", "alias": "x")",
         "address: no frame holds"},
        {R"("key": "minia", "value": {"constant": 1})", R"("minia")", "key: the dictionary has no key"}};
    for (const auto& [object, operand, problem] : rows) {
        const auto loaded = ProfileLoader::Load(
            R"({"frames": [{"name": "a", "function": 3, "address": 0, "count": 1}], "objects": [{)" +
            std::string(object) + R"(}], "alarms": [{"name": "High", "priority": "LOW", "chain": "greater",
            "left": {"object": )" +
            operand + R"(}, "right": {"constant": 1}}]})");
        EXPECT_EQ(loaded.problems.size(), 1U) << Written(loaded.problems);
        EXPECT_NE(Written(loaded.problems).find(problem), std::string::npos) << Written(loaded.problems);
    }
}

TEST(ProfileServices, AreFoundInAModelOfTheirOwn) {
    const Device device;
    const auto mapping = device.loaded.profile->serviceModel->GetServiceMapping("Power", "");
    EXPECT_EQ(static_cast<int>(mapping.serviceIdentifier), 7);
    ASSERT_EQ(mapping.elements.size(), 2U);
    EXPECT_EQ(mapping.elements.front()->GetAttributePath(), "base");
    EXPECT_EQ(*mapping.elements.back()->GetBitmaskVector(), (std::vector<std::uint8_t>{0, 0xFF}));
    EXPECT_EQ(device.loaded.profile->serviceModel->GetElements("Power", "x").size(), 1U);
}

TEST(ProfileServices, EachFaultGivesOneProblem) {
    ExpectOneProblemEach(PROFILE, R"(
"service": 7, => => 21 /services/0: the member "service" is missing => the gateway's service
{"address": 4 => {"address": 10 => 21 /services/0/elements/limit/address: no frame holds register 10
{"address": 4 => {"address": 50 => 21 /services/0/elements/limit: the frame "b" (50 to 53) cannot be written: only holding registers
"base": "state" => "base": "sum" => 21 /services/0/elements/base: registers are needed => "address"
"base": "state" => "base": {"constant": 1} => 21 /services/0/elements/base: registers are needed
"base": "state" => "base": "stat" => 21 /services/0/elements/base: there is no element "stat" => "state"?
"uint16", "mask": "0x00FF" => "scaled-power-34", "count": 1, "exponent": {"constant": 1} => 21 /services/0/elements/limit: values of the type "scaled-power-34" cannot be written
"alias": "x", "service" => "service" => 22 /services/1/name: a service for the object "Power" => line 21)");

    const std::string moreFrames =
        Replaced(PROFILE, "\"count\": 4}]", R"("count": 4}, {"name": "c", "function": 3, "addresses": [60, 61]},
{"name": "d", "function": 3.0, "address": 100, "count": 124}])");
    ExpectOneProblemEach(moreFrames, R"(
"address": 4, => "address": 61, => 22 /services/0/elements/limit: the frame "c" (2 of 60 to 61) cannot => more than one request
"address": 4, => "address": 100, => 22 /services/0/elements/limit: the frame "d" (100 to 223) cannot => at most 123 registers)");
}

TEST(ProfileSubgraphs, AreTheModels) {
    using Category = ModbusDeviceModel::Device::VortaObjectCategory;
    const Device device;
    const auto& model = *device.loaded.profile->model;
    EXPECT_TRUE(model.IsEdmType());
    EXPECT_EQ(model.GetVortaSubgraph(Category::CATEGORY_0), (Names{"Alarm.CustomAlarm", "Closed", "Power"}));
    EXPECT_EQ(model.GetVortaSubgraph(Category::CATEGORY_8), Names{"Power"});
    EXPECT_FALSE(model.IsSubgraphAvailable(Category::CATEGORY_7));
    ExpectOneProblemEach(PROFILE, R"(
"Closed"] => "closed"] => 23 /subgraphs/0/2: there is no object, alarm or service "closed" => did you mean "Closed"?
"Closed"] => "Power"] => 23 /subgraphs/0/2: "Power" is already in this list
"8": [" => "9": [" => 23 /subgraphs/9: there is no such member => "8")");
}

}  // namespace kzm::ModbusGateway::ProfileSectionsTest
