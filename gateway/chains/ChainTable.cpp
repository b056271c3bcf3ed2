#include "gateway/chains/ChainTable.h"

#include <algorithm>
#include <iterator>

#include "gateway/chains/Arithmetic.h"
#include "gateway/chains/Decisions.h"
#include "gateway/chains/SettingReaders.h"

namespace kzm::ModbusGateway {

namespace {

using namespace Arithmetic;
using namespace Decisions;
using namespace SettingReaders;
using Type = ModbusDeviceModel::ProcessingChainOperandType;

constexpr std::string_view MINUEND_SUBTRAHEND[] = {"minuend", "subtrahend"};
constexpr std::string_view DIVIDEND_DIVISOR[] = {"dividend", "divisor"};
constexpr std::string_view VALUE_EXPONENT[] = {"value", "exponent"};
constexpr std::string_view LEFT_RIGHT[] = {"left", "right"};
constexpr ChainInputs ONE{{}, true};
constexpr ChainInputs MANY{};
constexpr ChainInputs SIDES{LEFT_RIGHT};

constexpr ChainTypes NUMBERS[] = {{Type::NUMBER, Type::NUMBER}};
constexpr ChainTypes SCALED[] = {{Type::NUMBER, Type::INTEGER}};
constexpr ChainTypes INTEGER[] = {{Type::INTEGER, Type::INTEGER}};
constexpr ChainTypes BOOLEANS[] = {{Type::BOOLEAN, Type::BOOLEAN}};
constexpr ChainTypes ANY[] = {
    {Type::NUMBER, Type::NUMBER}, {Type::STRING, Type::STRING}, {Type::BOOLEAN, Type::BOOLEAN}};

constexpr std::string_view A_NUMBER = "a finite number";
constexpr ChainSetting DEAD_BAND_ROW{"deadBand", false, "a finite number from 0 on", ReadDeadBand};
constexpr ChainSetting DEFAULT_ROW{"default", false, "a text that is not empty", ReadDefault};

constexpr std::span<const ChainSetting> NOTHING;
constexpr ChainSetting LINE[] = {{"factor", false, A_NUMBER, ReadNumber<&ChainSettings::factor>},
                                 {"offset", false, A_NUMBER, ReadNumber<&ChainSettings::offset>}};
constexpr ChainSetting DEAD_BAND[] = {DEAD_BAND_ROW};
constexpr ChainSetting BAND[] = {{"low", true, A_NUMBER, ReadNumber<&ChainSettings::low>},
                                 {"high", true, A_NUMBER, ReadNumber<&ChainSettings::high>},
                                 DEAD_BAND_ROW};
constexpr ChainSetting BIT[] = {{"bit", true, "0 to 63", ReadBit}};
constexpr ChainSetting BY_VALUE[] = {
    {"labels", true, "an object of \"value\": \"label\", each value once", ReadLabelsByValue}, DEFAULT_ROW};
constexpr ChainSetting BY_BIT[] = {
    {"labels", true, "a list of {\"bit\": 0 to 63, \"label\": \"...\"}, each bit once", ReadLabelsByBit}, DEFAULT_ROW};

constexpr ChainRow CHAINS[] = {
    {"sum", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Fold<Plus>},
    {"difference", {MINUEND_SUBTRAHEND}, NUMBERS, ChainResult::NUMBER, NOTHING, Fold<Minus>},
    {"product", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Fold<Times>},
    {"quotient", {DIVIDEND_DIVISOR}, NUMBERS, ChainResult::NUMBER, NOTHING, Quotient},
    {"minimum", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Extreme<-1>},
    {"maximum", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Extreme<1>},
    {"average", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Average},
    {"unbalance", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Unbalance},
    {"hypotenuse", MANY, NUMBERS, ChainResult::NUMBER, NOTHING, Hypotenuse},
    {"linear", ONE, NUMBERS, ChainResult::NUMBER, LINE, Linear},
    {"scale10", {VALUE_EXPONENT}, SCALED, ChainResult::NUMBER, NOTHING, Scale10},
    {"equal", SIDES, ANY, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<EQUAL>>},
    {"not equal", SIDES, ANY, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<LESS | GREATER>>},
    {"less", SIDES, NUMBERS, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<LESS>>},
    {"less or equal", SIDES, NUMBERS, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<LESS | EQUAL>>},
    {"greater", SIDES, NUMBERS, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<GREATER>>},
    {"greater or equal", SIDES, NUMBERS, ChainResult::BOOLEAN, DEAD_BAND, Decide<Compare<GREATER | EQUAL>>},
    {"inside band", ONE, NUMBERS, ChainResult::BOOLEAN, BAND, Decide<CompareWithBand<true>>},
    {"outside band", ONE, NUMBERS, ChainResult::BOOLEAN, BAND, Decide<CompareWithBand<false>>},
    {"and", MANY, BOOLEANS, ChainResult::BOOLEAN, NOTHING, Decide<And>},
    {"or", MANY, BOOLEANS, ChainResult::BOOLEAN, NOTHING, Decide<AnyIs<true>>},
    {"not", ONE, BOOLEANS, ChainResult::BOOLEAN, NOTHING, Decide<AnyIs<false>>},
    {"bit", ONE, INTEGER, ChainResult::BOOLEAN, BIT, Decide<Bit>},
    {"choice by value", ONE, ANY, ChainResult::LABEL, BY_VALUE, ChooseByValue},
    {"choice by bit", ONE, INTEGER, ChainResult::LABEL, BY_BIT, ChooseByBit},
};

}  // namespace

std::span<const ChainRow> AllChains() {
    return CHAINS;
}

const ChainRow* FindChain(std::string_view name) {
    const auto found =
        std::find_if(std::begin(CHAINS), std::end(CHAINS), [&](const auto& row) { return row.name == name; });
    return found == std::end(CHAINS) ? nullptr : found;
}

}  // namespace kzm::ModbusGateway
