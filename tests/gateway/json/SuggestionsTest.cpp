#include "gateway/json/Suggestions.h"

#include <gtest/gtest.h>

#include <cmath>

#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway::SuggestionsTest {

TEST(SuggestionsTest, TheLikeliestNamesComeFirstWhateverTheirCase) {
    const Names known{"maximum", "minimum",         "urn",         "unit", "Van", "Vab", "Hz", "float32",
                      "uint32",  "float32-swapped", "enum-float32"};
    // clang-format off
    const std::pair<const char*, Names> rows[] = {
        {"FLOAT32", {"float32"}}, {"van", {"Van"}}, {"hz", {"Hz"}},  // the same but for the case
        {"float", {"float32", "enum-float32", "float32-swapped"}},  // contain it, the shortest first
        {"float32_be", {"float32"}}, {"min", {"minimum"}}, {"imum", {"maximum", "minimum"}},  // likewise
        {"ma", {"maximum"}}, {"unit of urns", {"unit", "urn"}}, {"m", {}}, {"", {}},  // too short to tell
        {"uint23", {"uint32"}},  // neighbours swapped
        {"mximun", {"maximum"}}, {"mrm", {}},  // two of six differ, of the other three
        {"Vax", {"Van", "Vab"}}, {"urm", {"urn"}}};
    // clang-format on
    for (const auto& [unknown, suggestions] : rows) {
        EXPECT_EQ(Suggest(unknown, known), suggestions) << unknown;
    }
    EXPECT_EQ(Suggestion("va", {"Van", "Vab", "Var"}), "; did you mean \"Van\", \"Vab\" or \"Var\"?");
    EXPECT_EQ(Suggestion("x", {"Van"}), "");
    EXPECT_EQ(Suggest(std::string(81, 'a'), {std::string(80, 'a') + 'b'}), Names());
    EXPECT_EQ(Quoted("b" + std::string(198, 'a') + "\u00E9"), "\"b" + std::string(198, 'a') + "...\"");
}

TEST(SuggestionsTest, NumbersHaveTheShortestTextOfTheirPrecision) {
    using enum NumberPrecision;
    // clang-format off
    const std::tuple<double, NumberPrecision, const char*> rows[] = {
        {29 * 0.1, DIGITS_15, "2.9"}, {29 * 0.1, DOUBLE, "2.9000000000000004"}, {0.1F, FLOAT, "0.1"},
        {0.1F, DOUBLE, "0.10000000149011612"}, {16777217, DIGITS_15, "16777217"}, {-0.0, FLOAT, "-0"},
        {1e12, DIGITS_15, "1e+12"}, {999999999999.0, DIGITS_15, "999999999999"}, {0.0001, DOUBLE, "0.0001"},
        {0.00001F, FLOAT, "1e-05"}, {3.4028234663852886e38, FLOAT, "3.4028235e+38"}, {1e300, FLOAT, "1e+300"},
        {1.7976931348623157e308, DIGITS_15, "1.7976931348623157e+308"}, {-INFINITY, FLOAT, "-inf"},
        {NAN, DIGITS_15, "nan"}};
    // clang-format on
    for (const auto& [number, precision, text] : rows) {
        EXPECT_EQ(NumberText(number, precision), text);
    }
}

}  // namespace kzm::ModbusGateway::SuggestionsTest
