#include "gateway/profile/ProfileLoader.h"

#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/capture/Capture.h"
#include "gateway/chains/ChainTable.h"
#include "gateway/profile/ProfileTesting.h"

namespace kzm::ModbusGateway::ProfileLoaderTest {

// One member, element or object per line, so that test rows can name lines.
const std::string PROFILE = R"({
"device": {"model": "M", "version": "2", "wordOrder": "little", "identification": {"Vendor": "V"}, "baseConcept": 7},
"frames": [
{"name": "main", "function": "holding", "address": "0x64", "count": 20},
{"name": "list", "function": 4, "addresses": [7, "0x5", 6]},
{"name": "bits", "function": "coils", "address": 500, "count": 4}],
"enumerations": {
"state": {"0": "Off", "0x1": "On"}},
"elements": {
"clock": {"address": 116, "type": 44, "order": "big"}},
"objects": [
{"name": "Number", "unit": "A", "value": {"address": 100, "type": "int32", "scale": 0.5, "offset": 1}, "timestamp": "clock"},
{"name": "State", "alias": "x", "labels": {"On": true}, "value": {"address": 102, "type": "enum16", "mask": "0x00F0", "enumeration": "state"}},
{"name": "Group", "class": "C", "value": {"address": 5, "type": "uint32", "notAvailable": "0xFFFFFFFF"}, "elements": {
"a/b": {"value": {"address": 501, "type": "boolean"}, "quality": {"constant": "Good"}}}},
{"name": "Plain", "plain": true, "value": {"address": 103, "type": "text", "count": 2, "order": 1}}
]})";

TEST(ProfileLoader, AnObjectOfSeveralValuesFillsAllAndGivesTheFirstFailure) {
    const auto profile = std::move(ProfileLoader::Load(PROFILE).profile);
    ASSERT_TRUE(profile);
    const StoppedClock clock(NOW);
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    cache->Update(1, std::vector<std::uint16_t>{9, 0xFFFF, 0xFFFF}, NOW);
    cache->Update(2, std::vector<std::uint16_t>{0, 1, 0, 0}, NOW, QUALITY_BAD);
    json expected{{"quality", "Bad"}, {"datetime", NOW_TEXT}};
    expected["elements"]["a"]["b"] = {{"value", true}, {"quality", "Good"}, {"datetime", NOW_TEXT}};
    EXPECT_EQ(ObjectOf(*profile, cache, "Group", "", 42), expected);
    EXPECT_EQ(profile->objects[2].adapter->GetFrameIndexes(), (std::set<std::uint8_t>{1, 2}));
    EXPECT_EQ(profile->model->GetMeasurementInformation("Group").mRegisterAddress, 5);
}

TEST(ProfileLoader, WhatAProfileSaysOfDeviceFramesAndObjectsStandsInTheModel) {
    const auto profile = std::move(ProfileLoader::Load(PROFILE).profile);
    ASSERT_TRUE(profile);
    const auto& model = *profile->model;
    EXPECT_EQ(model.GetModelName() + model.GetModelVersion() + model.GetIdentification().at("Vendor"), "M2V");
    EXPECT_EQ(static_cast<int>(model.GetModelBaseConcept()), 7);
    EXPECT_FALSE(model.IsBigEndian() || model.IsUserDefinedModel());
    EXPECT_EQ(profile->frameNames, (std::vector<std::string>{"main", "list", "bits"}));
    EXPECT_EQ(model.GetFrames()[1].mAddressList, (std::vector<std::uint16_t>{7, 5, 6}));
    EXPECT_EQ(model.GetFrames()[0].mAddress.mAddress, 100);
    EXPECT_EQ(static_cast<int>(model.GetFrames()[2].mFunctionCode), 1);
    std::string unit;
    EXPECT_EQ(static_cast<int>(model.GetUnit("Number", unit)), 0);
    EXPECT_EQ(unit + profile->objects[0].unit, "AA");
    EXPECT_EQ(profile->objects[1].name + profile->objects[1].alias, "Statex");
}

TEST(ProfileLoader, EachFaultGivesOneProblemWithLinePointerAndRemedy) {
    ExpectOneProblemEach(PROFILE, R"(
// structure
"model": "M" => "model": 1 => 2 /device/model: 1 is not allowed => allowed: a text
"version" => "versoin" => 2 /device/versoin: there is no such member => did you mean "version"? Allowed
"little" => "low" => 2 /device/wordOrder: "low" is not => "big", "little"
"0x64" => "0x10000" => 4 /frames/0/address: "0x10000" is not => 0 to 65535
"function": "holding", => => 4 /frames/0: the member "function" is missing => "coils"
[7, => [-7, => 5 /frames/1/addresses/0: -7 is not => 0 to 65535
"count": 4}] => "count": 4}, 5] => 6 /frames/3: 5 is not => "addresses"
: "Off" => : "" => 8 /enumerations/state/0: "" is not => a label
"order": "big" => "order": 4 => 10 /elements/clock/order: 4 is not => "device", "big", "little", 0
{"address": 116 => {"constant": 1, "address": 116 => 10 /elements/clock: this object => alone
"quality": => "x/y~": 1, "quality": => 15 /objects/2/elements/a~1b/x~1y~0: there is no such member => allowed: "availability"
// frames
"count": 20 => "count": 126 => 4 /frames/0/count: 126 are too many => at most 125
"count": 4 => "count": 2001 => 6 /frames/2/count: 2001 is not => 1 to 2000
"address": 500, "count": 4 => "address": 65500, "count": 37}, {"name": "more", "function": 1, "address": 500, "count": 4 => 6 /frames/2/count: the frame ends at => 65536; the last register of a device is 65535
"count": 4}] => "count": 4}, {"name": "main", "function": "holding", "address": 110, "count": 20}] => 6 /frames/3/name: another frame already has => "main"
"0x5", 6 => "0x5", 6, 5 => 5 /frames/1/addresses/3: register 5 is already
"addresses": => "count": 3, "addresses": => 5 /frames/1/addresses: a frame has either => not both
// elements
"int32" => "imt32" => 12 /objects/0/value/type: there is no type => did you mean "int32"?
"int32" => "FLOAT32" => 12 /objects/0/value/type: there is no type "FLOAT32" => did you mean "float32"? Allowed
"int32" => "float_cdab" => 12 /objects/0/value/type: there is no type "float_cdab"; did you mean "float32" with "order": "little"? => Allowed
"int32", "scale": 0.5, "offset": 1 => 36 => 12 /objects/0/value: the type "scaled-power-36" needs an => "exponent"
"int32" => "int32", "count": 1 => 12 /objects/0/value/count: the type "int32" cannot have 1 registers => allowed: 2
, "count": 2, => , => 16 /objects/3/value: "count" is missing => 1 to 127
"address": 116 => "address": 117 => 10 /elements/clock/address: no frame holds registers 117 to 120 => nearest: "main" (100 to 119), "list" (3 of 5 to 7)
"address": 5, => "address": 7, "frame": "list", => 14 /objects/2/value/address: the frame "list" (3 of 5 to 7) does not hold
"address": 5, => "address": 5, "frame": "lst", => 14 /objects/2/value/frame: there is no frame "lst" => did you mean "list"? Allowed: "main", "list", "bits"
"address": 500 => "address": 510 => 15 /objects/2/elements/a~1b/value/address
"0x00F0" => "0x00F" => 13 /objects/1/value/mask: "0x00F" does not fit => "0x" and 4 hexadecimal
"0xFFFFFFFF" => "0xFFFFFF0G" => 14 /objects/2/value/notAvailable: "0xFFFFFF0G" does => 8 hexadecimal
"type": 44 => "type": 44, "scale": 2 => warning 10 /elements/clock/scale: "scale" has no effect => iec870
"scale": 0.5 => "scale": 0 => warning 12 /objects/0/value/scale: a "scale" of 0 makes every value the same
"0x00F0" => "0x0000" => warning 13 /objects/1/value/mask: this mask removes every bit
[7, => [102, 7, => 13 /objects/1/value: several frames hold register 102 => "main", "list"
"int32" => "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaé" => 12 /objects/0/value/type: there is no type "aaaaaaaaaaaaaaaaaa => a...
// enumerations
"enum16", "mask": "0x00F0" => "enum-float32" => 8 /enumerations/state/0x1: "0x1" is not a raw value of the type "enum-float32" => a number
"text", "count": 2 => "enum-text", "enumeration": "state" => 16 /objects/3/value: "count" is missing => 1 to 127
"0x1" => "16" => warning 13 /objects/1/value/mask: with this mask the raw value 16 of "On"
"0x1" => "0x10000" => 8 /enumerations/state/0x10000: "0x10000" is not a raw value => 0 to 65535
"0x1" => "0x00" => 8 /enumerations/state/0x00: the raw value => already
"enumeration": "state" => "enumeration": "stat" => 13 /objects/1/value/enumeration: there is no enumeration "stat" => state
"enum16" => "uint16" => 13 /objects/1/value/enumeration: values of the type "uint16" => no labels
"text" => "enum-text" => 16 /objects/3/value: the type "enum-text" needs => "enumeration"
"On": true => "on": true => 13 /objects/1/labels/on: none of => did you mean "On"?
// objects
"Plain", => "State", "alias": "x", => 16 /objects/3/name: the object "State" with the alias "x" is already defined on line 13
"State", "alias": "x" => "Number", "unit": "B", "alias": "x", "class": "$iot.measurement.NumericalMeasurementValue<Integer>" => warning 13 /objects/1/unit: all objects of one name share one unit => "A"
"Plain", => "Plain", "timestamp": "clock", => 16 /objects/3/timestamp: a plain object
"timestamp": "clock" => "timestamp": "clok" => 12 /objects/0/timestamp: there is no element => did you mean "clock"?
"timestamp": "clock" => "quality": "clock" => 12 /objects/0/quality: this element cannot => a text
{"constant": "Good"} => {"constant": 1} => 15 /objects/2/elements/a~1b/quality: this element cannot
"a/b" => "a~b" => 15 /objects/2/elements/a~0b: this is not an element path => "~0"
"a/b" => "a/256/~0~1" => 15 /objects/2/elements/a~1256~1~00~01: this path has an index above 255 => 0 to 255
"a/b": => "a": {"value": "clock"}, "a/value": => 15 /objects/2/elements/a~1value: this path leads => "a"
{"name": "Plain" => {"name": "T", "urn": "State/x", "value": {"address": 103, "type": "enum16", "enumeration": "state"}}, {"name": "Plain" => 16 /objects/3: the label "On" is translated into "On" here => into true by the object on line 13
// left over
"count": 4}] => "count": 4}, {"name": "f", "function": 1, "address": 5, "count": 1, "addresses": [5]}] => 6 /frames/3/addresses
"count": 4}] => "count": 4}, {"name": "f", "function": 1, "address": 9, "count": 1}] => warning 6 /frames/3: no object uses the frame "f"
"timestamp": "clock" => "alias": "" => warning 10 /elements/clock: no object uses
"elements": { => "elements": {"x": {"constant": null}, => warning 9 /elements/x
"enumerations": { => "enumerations": {"e": {"0": "0"}, => warning 7 /enumerations/e: no element)");
}

TEST(ProfileLoader, AMaskThatCannotGiveALabelsRawValueIsToldWhereverItsBitsAre) {
    const char* const rows[][4] = {{"enum16", "0xFFFF", "0xFFFF", ""},
                                   {"enum16", "0x0FF0", "0xFF", ""},
                                   {"enum16", "0x0FF0", "0x100", "raw value 256"},
                                   {"enum16", "0x8001", "0x8001", ""},
                                   {"enum16", "0x8001", "2", "raw value 2"},
                                   {"enum16-unshifted", "0xF000", "0x1000", ""},
                                   {"enum16-unshifted", "0xF000", "1", "raw value 1"},
                                   {"enum32", "0x0FFFF000", "0xFFFF", ""},
                                   {"enum32", "0x0FFFF000", "0x10000", "raw value 65536"}};
    for (const auto& [type, mask, raw, warning] : rows) {
        const auto loaded = ProfileLoader::Load(
            R"({"frames": [{"name": "a", "function": 3, "address": 0, "count": 2}], "enumerations": {"e": {")" +
            std::string(raw) + R"(": "On"}}, "objects": [{"name": "o", "value": {"address": 0, "enumeration": "e",
            "frame": "a", "type": ")" +
            type + R"(", "mask": ")" + mask + R"("}}]})");
        const std::string problems = Written(loaded.problems);
        EXPECT_EQ(problems.empty(), std::string(warning).empty()) << mask << ' ' << problems;
        EXPECT_NE(problems.find(warning), std::string::npos) << problems;
    }
}

TEST(ProfileLoader, AllFaultsAreToldInTheOrderOfTheLines) {
    std::string text = PROFILE;
    const std::pair<const char*, const char*> changes[] = {
        {R"("count": 2, "order": 1)", R"("count": 2, "order": 7, "mask": "0xFF")"},
        {R"("count": 20)", R"("count": "20")"},
        {R"("count": 4})", R"("count": 4}, {"name": "far", "function": "x", "address": 65535, "count": 2})"},
        {R"("alias": "x")", R"("alias": 1, "alias": 2)"},
        {R"("offset": 1)", R"("ofset": 1, "count": 9)"}};
    for (const auto& [old, replacement] : changes) {
        text = Replaced(text, old, replacement);
    }
    std::string pointers;
    for (const Problem& problem : ProfileLoader::Load(text).problems) {
        pointers += problem.pointer + ' ';
    }
    EXPECT_EQ(pointers,
              "/frames/0/count /frames/3/count /frames/3/function /objects/0/value/count /objects/0/value/ofset "
              "/objects/1/alias /objects/1/alias "
              "/objects/3/value/mask /objects/3/value/order ");
}

TEST(ProfileLoader, AProfileHoldsUpTo255Frames) {
    std::string frames;
    for (int i = 0; i < 252; ++i) {
        frames += ",{\"name\": \"" + std::to_string(i) + "\", \"function\": 4, \"addresses\": [9]}";
    }
    const auto full = ProfileLoader::Load(Replaced(PROFILE, "\"count\": 4}]", "\"count\": 4}" + frames + "]"));
    EXPECT_TRUE(full.profile);
    const auto over = ProfileLoader::Load(Replaced(PROFILE, "\"count\": 4}]", "\"count\": 4}, 1" + frames + "]"));
    EXPECT_NE(Written(over.problems).find("3 /frames: this list is not allowed"), std::string::npos);
}

TEST(ProfileReference, ItsExamplesLoadAndItNamesEveryLogicCodeWithItsRegistersAndEveryChain) {
    const std::string reference = ReadFile("docs/profile.md");
    std::vector<ProfileLoader::Result> loaded;
    const std::string fence = "```jsonc\n";
    for (auto begin = reference.find(fence); begin != std::string::npos; begin = reference.find(fence, begin + 1)) {
        const std::string example =
            reference.substr(begin + fence.size(), reference.find("```\n", begin + 1) - begin - fence.size());
        Problems problems;
        if (example.find("\"snapshots\"") == std::string::npos) {
            loaded.push_back(ProfileLoader::Load(example));
            problems = loaded.back().problems;
        } else {
            ASSERT_TRUE(loaded.at(0).profile);  // the capture is the first profile's
            EXPECT_FALSE(Capture::Parse(example, loaded[0].profile->GetDeviceFrames(), problems).snapshots.empty());
        }
        EXPECT_EQ(Written(problems), "") << example;
    }
    for (const auto& row : ModbusDeviceModel::DeviceProfile::LogicCodeRows()) {
        const std::string least = std::to_string(row.minRegisters), most = std::to_string(row.maxRegisters);
        const auto name = reference.find("`" + std::string(row.name) + "`", reference.find("| code | name |"));
        ASSERT_NE(name, std::string::npos) << row.name;
        const std::string registers = "| " + (least == most ? least : least + " to " + most) + " |";
        EXPECT_EQ(reference.find(registers, name), reference.find('|', name)) << row.name;
    }
    for (const auto& row : AllChains()) {
        EXPECT_NE(reference.find("`" + std::string(row.name) + "`"), std::string::npos) << row.name;
    }
}

}  // namespace kzm::ModbusGateway::ProfileLoaderTest
