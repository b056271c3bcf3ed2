#include "gateway/profile/TypeSpelling.h"

#include <gtest/gtest.h>

namespace kzm::ModbusGateway::TypeSpellingTest {

TEST(TypeSpelling, OtherProgramsTypesLeadToThoseOfProfiles) {
    // clang-format off
    const struct {
        const char* text;
        const char* type;
        const char* order = "";
        bool swapsBytes = false;
    } rows[] = {
        {"u16", "uint16"}, {"uint8", "uint16"}, {"INT16U", "uint16"}, {"WORD", "uint16"}, {"uint_16", "uint16"}, {"16uint", "uint16"},
        {"short", "int16"}, {"uint16be", "uint16"}, {"uint16le", "uint16", "", true}, {"DWORD", "uint32"},
        {"UDINT", "uint32"}, {"u32_be", "uint32", "big"}, {"INT32S", "int32"}, {"uint32s", "uint32", "little"},
        {"uint32sw", "uint32", "little"}, {"LREAL", "float64"}, {"REAL", "float32"}, {"float32_abcd", "float32", "big"},
        {"float32_cdab", "float32", "little"}, {"Float CDAB", "float32", "little"},
        {"float32nans", "float32", "little"}, {"float32_badc", "float32", "", true},
        {"float32_swap", "float32", "little"}, {"int64_ghefcdab", "int64", "little"}, {"floatbe", "float32", "big"},
        {"Bool", "boolean"}, {"bits", "boolean"}, {"float32le", "float32", "", true}, {"stringle", "text-swapped"}, {"string", "text"}};
    // clang-format on
    for (const auto& row : rows) {
        const auto spelling = FindTypeSpelling(row.text);
        ASSERT_TRUE(spelling) << row.text;
        EXPECT_EQ(spelling->type, row.type) << row.text;
        EXPECT_EQ(spelling->order, row.order) << row.text;
        EXPECT_EQ(spelling->swapsBytes, row.swapsBytes) << row.text;
    }
    for (const char* const text : {"", "s", "cdab", "bcd", "float16", "flot32"}) {
        EXPECT_FALSE(FindTypeSpelling(text)) << text;
    }
    EXPECT_EQ(DidYouMean({"float32", "little"}), "did you mean \"float32\" with \"order\": \"little\"?");
    EXPECT_EQ(DidYouMean({"float32", "", true}),
              "did you mean \"float32\"? (Swapped bytes within a register need a computation.)");
}

}  // namespace kzm::ModbusGateway::TypeSpellingTest
