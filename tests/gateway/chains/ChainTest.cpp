#include "gateway/chains/ChainFactory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "gateway/chains/ChainTable.h"
#include "kzm/StandIn/CapturedLog.h"

namespace kzm::ModbusGateway::ChainTest {

using nlohmann::json;

Names KeysOf(const json& object) {
    Names keys;
    for (const auto& member : object.items()) {
        keys.push_back(member.key());
    }
    return keys;
}

// The result as JSON text, or "status N" where there is none.
std::string Outcome(const ChainFactory::Result& made, const json& parameters) {
    const StandIn::CapturedLog unseen;
    json result = "untouched";
    const auto status = static_cast<int>(made.chain->Execute(parameters, result));
    EXPECT_EQ(status != 0, result == "untouched") << parameters;
    return status == 0 ? result.dump() : "status " + std::to_string(status);
}

struct Row {
    const char* chain;
    const char* settings;
    const char* parameters;
    const char* outcome;
};

// clang-format off
const Row ROWS[] = {
    {"sum", "{}", R"({"a": 1, "b": -3, "c": 5})", "3"}, {"sum", "{}", R"({"a": 1, "b": 0.5})", "1.5"},
    {"sum", "{}", R"({"a": 9007199254740993, "b": -9007199254740992})", "1"},
    {"sum", "{}", R"({"a": 9223372036854775807, "b": 1})", "9223372036854775808"},
    {"sum", "{}", R"({"a": 18446744073709551615, "b": -18446744073709551615.0})", "0.0"},
    {"sum", "{}", R"({"a": 18446744073709551615, "b": 1})", "status 28"},
    {"sum", "{}", R"({"a": 1e308, "b": 1e308})", "status 28"}, {"sum", "{}", R"({"a": 1, "b": "2"})", "status 28"},
    {"sum", "{}", R"({"a": 1, "b": null})", "status 28"},
    {"difference", "{}", R"({"subtrahend": 0.5, "minuend": 2})", "1.5"},
    {"difference", "{}", R"({"subtrahend": 2, "minuend": 1})", "-1"},
    {"difference", "{}", R"({"subtrahend": 9223372036854775808, "minuend": 0})", "-9223372036854775808"},
    {"difference", "{}", R"({"subtrahend": 9223372036854775809, "minuend": 0})", "status 28"},
    {"product", "{}", R"({"a": -1, "b": 9223372036854775808})", "-9223372036854775808"},
    {"product", "{}", R"({"a": 4294967296, "b": 4294967296})", "status 28"},
    {"product", "{}", R"({"a": 2, "b": 3, "c": 0.5})", "3.0"},
    {"quotient", "{}", R"({"divisor": 4, "dividend": 6})", "1.5"},
    {"quotient", "{}", R"({"divisor": -0.0, "dividend": 6})", "status 42"},
    {"quotient", "{}", R"({"divisor": 1e-10, "dividend": 1e300})", "status 28"},
    {"minimum", "{}", R"({"a": 2, "b": -1.5, "c": 7})", "-1.5"},
    {"maximum", "{}", R"({"a": 9007199254740992.0, "b": 9007199254740993, "c": -1})", "9007199254740993"},
    {"average", "{}", R"({"a": 1, "b": 2, "c": 6})", "3.0"},
    {"unbalance", "{}", R"({"a": 230, "b": 230, "c": 200})", "9.090909090909092"},
    {"unbalance", "{}", R"({"a": -1, "b": -3})", "50.0"}, {"unbalance", "{}", R"({"a": 0, "b": 0})", "status 42"},
    {"hypotenuse", "{}", R"({"a": 2, "b": -3, "c": 6})", "7.0"},
    {"hypotenuse", "{}", R"({"a": -3e200, "b": 0})", "3e+200"}, {"linear", "{}", R"({"x": 7})", "7"},
    {"linear", R"({"factor": 2, "offset": -1})", R"({"x": 7})", "13"},
    {"linear", R"({"factor": 0.5, "offset": -40})", R"({"x": 7})", "-36.5"},
    {"linear", R"({"factor": 3})", R"({"x": 9223372036854775807})", "status 28"},
    {"scale10", "{}", R"({"value": 2303, "exponent": -1})", "230.3"},
    {"scale10", "{}", R"({"value": -2, "exponent": 22})", "-2e+22"},
    {"scale10", "{}", R"({"value": 5, "exponent": -32768})", "status 28"},
    {"scale10", "{}", R"({"value": 5, "exponent": 1.0})", "status 28"},
    {"equal", "{}", R"({"left": 9007199254740993, "right": 9007199254740992.0})", "false"},
    {"equal", "{}", R"({"left": -1, "right": 18446744073709551615})", "false"},
    {"equal", "{}", R"({"left": 18446744073709551615, "right": 18446744073709551616.0})", "false"},
    {"equal", R"({"deadBand": 1})", R"({"left": 18446744073709551615, "right": 18446744073709551616.0})", "true"},
    {"equal", R"({"deadBand": 0.5})", R"({"left": 10, "right": 10.5})", "true"},
    {"equal", "{}", R"({"left": "On", "right": "On"})", "true"},
    {"equal", "{}", R"({"left": true, "right": false})", "false"},
    {"equal", "{}", R"({"left": "1", "right": 1})", "status 28"},
    {"not equal", R"({"deadBand": 5})", R"({"left": "On", "right": "Off"})", "true"},
    {"not equal", R"({"deadBand": 5})", R"({"left": -9223372036854775808, "right": 18446744073709551615})", "true"},
    {"less", "{}", R"({"left": -1, "right": 18446744073709551615})", "true"},
    {"less", R"({"deadBand": 2})", R"({"left": 8, "right": 10})", "false"},
    {"less", R"({"deadBand": 1.9})", R"({"left": 8, "right": 10})", "true"},
    {"less", "{}", R"({"left": "a", "right": "b"})", "status 28"},
    {"less or equal", R"({"deadBand": 2})", R"({"left": 12, "right": 10})", "true"},
    {"less or equal", "{}", R"({"left": 9223372036854775808, "right": 9223372036854775807})", "false"},
    {"less", "{}", R"({"left": -1e308, "right": 1e308})", "true"},
    {"greater", R"({"deadBand": 9007199254740993})", R"({"left": 9007199254740994, "right": 1})", "false"},
    {"greater", R"({"deadBand": 9007199254740992})", R"({"left": 9007199254740994, "right": 1})", "true"},
    {"greater or equal", R"({"deadBand": 2})", R"({"left": 8, "right": 10})", "true"},
    {"greater or equal", "{}", R"({"left": 5e-324, "right": 0})", "true"},
    {"inside band", R"({"low": 207, "high": 253})", R"({"u": 253})", "true"},
    {"inside band", R"({"low": 207, "high": 253})", R"({"u": 253.01})", "false"},
    {"outside band", R"({"low": 207, "high": 253, "deadBand": 1})", R"({"u": 206})", "false"},
    {"outside band", R"({"low": 207, "high": 253, "deadBand": 1})", R"({"u": 205.9})", "true"},
    {"and", "{}", R"({"a": true, "b": true, "c": false})", "false"},
    {"and", "{}", R"({"a": true, "b": true})", "true"}, {"or", "{}", R"({"a": false, "b": true})", "true"},
    {"or", "{}", R"({"a": false, "b": false})", "false"}, {"or", "{}", R"({"a": true, "b": 1})", "status 28"},
    {"not", "{}", R"({"a": false})", "true"}, {"bit", R"({"bit": 3})", R"({"word": 8})", "true"},
    {"bit", R"({"bit": 63})", R"({"word": -1})", "true"}, {"bit", R"({"bit": 2})", R"({"word": 8})", "false"},
    {"choice by value", R"({"labels": {"0x10": "Open", "-1": "Gone"}})", R"({"v": 16.0})", R"("Open")"},
    {"choice by value", R"({"labels": {"0x10": "Open", "-1": "Gone"}})", R"({"v": -1})", R"("Gone")"},
    {"choice by value", R"({"labels": {"0": "Open"}})", R"({"v": 1})", "status 42"},
    {"choice by value", R"({"labels": {"0": "Open"}, "default": "Other"})", R"({"v": 1})", R"("Other")"},
    {"choice by value", R"({"labels": {"ABC": "Right", "true": "Yes"}})", R"({"v": "ABC"})", R"("Right")"},
    {"choice by value", R"({"labels": {"ABC": "Right", "true": "Yes"}})", R"({"v": true})", R"("Yes")"},
    {"choice by bit", R"({"labels": [{"bit": 4, "label": "F"}, {"bit": 0, "label": "W"}]})", R"({"v": 17})", R"("F")"},
    {"choice by bit", R"({"labels": [{"bit": 4, "label": "F"}, {"bit": 0, "label": "W"}]})", R"({"v": 1})", R"("W")"},
    {"choice by bit", R"({"labels": [{"bit": 4, "label": "F"}]})", R"({"v": 2})", "status 42"}};
// clang-format on

TEST(Chain, AResultIsExactOrThereIsAStatus) {
    for (const Row& row : ROWS) {
        const json parameters = json::parse(row.parameters);
        const auto made = ChainFactory::Make(row.chain, KeysOf(parameters), json::parse(row.settings));
        ASSERT_TRUE(made.chain) << row.chain << row.settings << made.faults[0].message;
        EXPECT_EQ(Outcome(made, parameters), row.outcome) << row.chain << row.settings << row.parameters;
    }
}

TEST(Chain, EveryChainRefusesMissingParametersAndNumbersThatAreNotFinite) {
    const json settings = {{"low", 1}, {"high", 2}, {"bit", 1}};
    for (const ChainRow& row : AllChains()) {
        Names inputs(row.inputs.names.begin(), row.inputs.names.end());
        inputs = inputs.empty() ? Names(row.inputs.isSingle ? 1 : 2, "a") : inputs;
        json own = row.name == "choice by bit"        ? json::parse(R"({"labels": [{"bit": 1, "label": "x"}]})")
                   : row.result == ChainResult::LABEL ? json::parse(R"({"labels": {"1": "x"}})")
                                                      : json::object();
        for (const auto& setting : row.settings) {
            if (settings.contains(setting.name)) {
                own[std::string(setting.name)] = settings[std::string(setting.name)];
            }
        }
        const auto made = ChainFactory::Make(std::string(row.name), inputs, own);
        ASSERT_TRUE(made.chain) << row.name;
        EXPECT_EQ(made.chain->HasEnumOutput(), row.result == ChainResult::LABEL) << row.name;
        EXPECT_EQ(Outcome(made, json::object()), "status 44") << row.name;
        for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
            json parameters;
            for (const auto& input : inputs) {
                parameters[input] = number;
            }
            EXPECT_EQ(Outcome(made, parameters), "status 28") << row.name;
        }
    }
}

std::string Written(const ChainFactory::Result& made) {
    EXPECT_EQ(made.chain == nullptr, !made.faults.empty());
    std::string text;
    for (const auto& fault : made.faults) {
        for (const auto& member : fault.path) {
            text += "/" + member;
        }
        text += ": " + fault.message + "\n";
    }
    return text;
}

// In these rows `parameters` lists the names of the inputs, and `outcome` is how the faults start.
TEST(ChainFactory, AFaultTellsItsPlaceAndWhatIsAllowed) {
    const Row rows[] = {
        {"sums", "{}", "a", R"(/chain: there is no chain "sums"; did you mean "sum"? Allowed: "sum", "difference", )"},
        {"sum", "{}", "a", R"(/inputs: the chain "sum" cannot have 1 inputs; allowed: two or more, under any name)"},
        {"not", "null", "a b", R"(/inputs: the chain "not" cannot have 2 inputs; allowed: one, under any name)"},
        {"difference", "{}", "a minuend",
         R"(/inputs: the chain "difference" does not have the inputs "a", "minuend"; needed: exactly "minuend", "s)"},
        {"sum", "[]", "a b", "/settings: settings cannot be this list; allowed: an object"},
        {"linear", R"({"faktor": 1})", "a", R"(/settings/faktor: the chain "linear" has no setting "faktor"; did you)"},
        {"inside band", R"({"low": "x", "deadBand": -1})", "a",
         R"(/settings/deadBand: "deadBand" cannot be -1; allowed: a finite number from 0 on
/settings/low: "low" cannot be "x"; allowed: a finite number
: the chain "inside band" needs the setting "high"; allowed: a finite number)"},
        {"inside band", R"({"low": 2, "high": 1})", "a", R"(/settings/low: "low" is above "high"; allowed: up to 1)"},
        {"bit", "{}", "a", R"(: the chain "bit" needs the setting "bit"; allowed: 0 to 63)"},
        {"choice by value", "{}", "a", R"(: the chain "choice by value" needs the setting "labels")"},
        {"choice by bit", "{}", "a", R"(: the chain "choice by bit" needs the setting "labels")"},
        {"bit", R"({"bit": 64})", "a", R"(/settings/bit: "bit" cannot be 64; allowed: 0 to 63)"},
        {"choice by value", R"({"labels": {"16": "a", "0x10": "b"}, "default": ""})", "a", R"(/settings/default: "d)"},
        {"choice by value", R"({"labels": {"16": "a", "0x10": "b"}})", "a", R"(/settings/labels: "labels" cannot be)"},
        {"choice by value", R"({"labels": []})", "a", R"(/settings/labels: "labels" cannot be this list; allowed: )"},
        {"choice by value", R"({"labels": "a"})", "a", R"(/settings/labels: "labels" cannot be "a"; allowed: an obj)"},
        {"choice by bit", R"({"labels": {"bit": 1}})", "a", R"(/settings/labels: "labels" cannot be this object)"},
        {"choice by bit", R"({"labels": [{"bit": -1, "label": "x"}]})", "a", R"(/settings/labels: "labels" can)"}};
    for (const auto& row : rows) {
        std::istringstream inputs(row.parameters);
        const Names names{std::istream_iterator<std::string>(inputs), {}};
        const std::string faults = Written(ChainFactory::Make(row.chain, names, json::parse(row.settings)));
        EXPECT_EQ(faults.substr(0, std::string(row.outcome).size()), row.outcome) << faults;
    }
}

TEST(ChainFactory, TheOperandsOfAnAlarmStandInTheirOrderUnderTheirOwnNames) {
    const auto greater = ChainFactory::MakeForAlarm("greater", "now", "before", nullptr);
    EXPECT_EQ(Outcome(greater, {{"now", 2}, {"before", 1}}), "true");
    EXPECT_EQ(Outcome(greater, {{"left", 2}, {"right", 1}}), "status 44");
    const auto outside = ChainFactory::MakeForAlarm("outside band", "left", "right", {{"low", 1}, {"high", 2}});
    EXPECT_EQ(Outcome(outside, {{"left", 3}, {"right", nullptr}}), "true");
    const std::string refused = Written(ChainFactory::MakeForAlarm("sum", "left", "right", nullptr));
    EXPECT_EQ(refused.find(R"(/chain: the chain "sum" does not give true or false; allowed: "equal", )"), 0U)
        << refused;
}

TEST(ChainFactory, AllLabelsAreTold) {
    const json settings = {{"labels", {{"1", "b"}, {"2", "a"}, {"3", "b"}}}, {"default", "c"}};
    EXPECT_EQ(ChainFactory::Make("choice by value", {"v"}, settings).labels, (Names{"a", "b", "c"}));
}

}  // namespace kzm::ModbusGateway::ChainTest
