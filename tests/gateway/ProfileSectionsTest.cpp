#include <gtest/gtest.h>

#include "ProfileTesting.h"
#include "gateway/ProblemText.h"
#include "kzm/StandIn/CapturedLog.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway {

namespace {

using ModbusDeviceModel::DeviceCache::QUALITY_BAD;
using ModbusDeviceModel::DeviceCache::QUALITY_GOOD;
using ModbusDeviceModel::DeviceCache::QUALITY_QUESTIONABLE;
using nlohmann::json;

constexpr std::uint64_t NOW = 1'000'000;

// One element or object a line, so that the rows of the tests can name lines.
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
{"name": "Closed", "value": {"chain": "equal", "inputs": {"left": "state", "right": {"constant": "On"}}}}
]})";

// A loaded profile and a device whose registers are all 0.
struct Device {
    explicit Device(const std::string& text = PROFILE) : loaded(ProfileLoader::Load(text)) {
        EXPECT_EQ(Written(loaded.problems), "");
        cache = std::make_shared<RegisterCache>(loaded.profile->model->GetFrames());
        Set(0, {});
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

    StandIn::StoppedClock clock{NOW};
    StandIn::CapturedLog unseen;
    ProfileLoader::Result loaded;
    std::shared_ptr<RegisterCache> cache;
};

TEST(ProfileComputations, AreMadeOfElementsConstantsAndOneAnother) {
    Device device;
    device.Set(0, {7, 1, 0xFFFF});
    device.Set(1, {4});
    EXPECT_EQ(device.ValueOf("Power"), json({1.1, "Good"}));
    EXPECT_EQ(device.ValueOf("Level"), json({2, "Good"}));
    EXPECT_EQ(device.ValueOf("Closed"), json({true, "Good"}));
    device.Set(1, {0xFFFE}, QUALITY_BAD);
    EXPECT_EQ(device.ValueOf("Power"), json({0.5, "Bad"}));
    EXPECT_EQ(device.ValueOf("Level"), json({"Low", "Bad"}));
    device.Set(0, {0x8000});
    EXPECT_EQ(device.ValueOf("Power", 42), json({nullptr, "Bad"}));
    EXPECT_EQ(device.loaded.profile->objects[1].adapter->GetFrameIndexes(), (std::set<std::uint8_t>{0, 1}));
    std::string className;
    device.loaded.profile->model->GetClassName("Power", className);
    EXPECT_EQ(className, "$iot.measurement.NumericalMeasurementValue<Float>");
}

TEST(ProfileComputations, EachFaultGivesOneProblem) {
    const Fault rows[] = {
        {"\"sum\", \"inputs\"", "\"som\", \"inputs\"", "7 /elements/sum/chain: there is no chain \"som\"",
         "did you mean \"sum\"?"},
        {"\"x\": \"one\", ", "", "7 /elements/sum/inputs: the chain \"sum\" cannot have 1 inputs", "two or more"},
        {"\"x\": \"one\"", "\"x\": \"onne\"", "7 /elements/sum/inputs/x: there is no such element",
         "did you mean \"one\"?"},
        {"\"x\": \"one\"", "\"x\": \"state\"", "7 /elements/sum/inputs/x: the element does not suit the chain \"sum\"",
         "needed: a number"},
        {"\"exponent\": {", "\"exponents\": {", "11 /objects/0/value/inputs: the chain \"scale10\" has other inputs",
         "\"exponent\""},
        {"2, \"type\": \"int16\"", "2, \"type\": \"int16-to-float\"", "11 /objects/0/value/inputs/exponent",
         "a whole number"},
        {"{\"constant\": \"On\"}", "{\"constant\": 1}", "13 /objects/2/value/inputs/", "as its other inputs are"},
        {"{\"constant\": \"On\"}", "{\"constant\": null}", "13 /objects/2/value/inputs/right", "needed: a text"},
        {"\"settings\": {", "\"settings\": {\"defalt\": \"x\", ",
         "12 /objects/1/value/settings/defalt: the chain \"choice by value\" has no setting", "\"default\""},
        {", \"settings\": {\"labels\": {\"true\": \"Low\", \"false\": \"High\"}}", "", "12 /objects/1/value: the chain",
         "needs the setting \"labels\""},
        {"\"chain\": \"less\"", "\"type\": 3, \"chain\": \"less\"",
         "12 /objects/1/value/inputs/value/type: there is no such member",
         "allowed: \"chain\", \"inputs\", \"settings\""},
        {"\"value\": \"sum\"", "\"value\": null", "11 /objects/0/value/inputs/value: null is not allowed",
         "\"chain\" and \"inputs\""},
        {"{\"address\": 0, \"type\": \"int16\", \"notAvailable\": \"0x8000\"}",
         "{\"chain\": \"linear\", \"inputs\": {\"v\": \"sum\"}}", "7 /elements/sum/inputs/x: the element needs itself",
         R"("one" needs "sum" needs "one")"},
        {"\"name\": \"Level\",", "\"name\": \"Level\", \"timestamp\": \"sum\",",
         "12 /objects/1/timestamp: the element does not suit", "a date and time"},
        {"\"elements\": {",
         "\"elements\": {\"more\": {\"chain\": \"average\", \"inputs\": {\"a\": \"sum\", \"b\": \"sum\"}},",
         "warning 6 /elements/more: no object uses", ""},
    };
    ExpectOneProblemEach(PROFILE, rows);
}

TEST(ProfileComputations, AValueTakesABoundedNumberOfElementsAndComputations) {
    const struct {
        const char* form;
        const char* last;  // needed by the others
    } rows[] = {{R"("e%d": {"chain": "sum", "inputs": {"x": "e%e", "y": "e%e"}},)", "e1000"},
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

}  // namespace

}  // namespace kzm::ModbusGateway
