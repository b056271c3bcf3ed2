#include <gtest/gtest.h>

#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test {

TEST(TextDecoding, EveryByteThatIsNoUtf8IsReplaced) {
    const std::string r = "\xEF\xBF\xBD";
    const struct {
        std::string text, expected;
    } ROWS[] = {{"", ""},
                {"kWh", "kWh"},
                {"\xC2\xB0"
                 "C \xE2\x82\xAC \xF0\x9F\x94\x8B",
                 "\xC2\xB0"
                 "C \xE2\x82\xAC \xF0\x9F\x94\x8B"},
                {"A\xC3"
                 "B",
                 "A" + r + "B"},
                {"\xE2\x82", r + r},
                {"\xF0\x9F\x94", r + r + r},
                {"\x80", r},
                {"\xF8\xFF", r + r},
                {"\xC0\x80\xED\xA0\x80", "\xC0\x80\xED\xA0\x80"},  // overlong forms and surrogates are let through
                {std::string("a\0b", 3), std::string("a\0b", 3)}};
    for (const auto& row : ROWS) {
        std::string text = row.text;
        ElementData::SanitiseUTF8Sequence(text);
        EXPECT_EQ(text, row.expected);
    }
}

TEST(TextDecoding, AnInvalidSequenceKeepsTheLengthThatItsLeadByteAnnounces) {
    const struct {
        std::string text;
        bool isValid;
        unsigned length;
    } ROWS[] = {{"A", true, 1},
                {"\xC3", false, 2},
                {"\xE2\x82"
                 "A",
                 false, 3},
                {"\xF0\x9F\x94\x8B", true, 4},
                {"\x80", false, 1},
                {"\xF8\x80", false, 1}};
    for (const auto& row : ROWS) {
        std::string text = "_" + row.text;
        unsigned position = 1;
        unsigned length = 0;
        EXPECT_EQ(ElementData::CheckUTF8Validity(text, position, length), row.isValid) << row.text;
        EXPECT_EQ(length, row.length) << row.text;
    }
}

TEST(DateTimeDecoding, UlpGivesSecondsSince1970AndNanoseconds) {
    std::timespec time{};
    ElementData::DecodeDateTimeULPToIEC870(time, "\x00\x01\x00\x02\xFC\x05");
    EXPECT_EQ(time.tv_sec, 946684800 + 65538);
    EXPECT_EQ(time.tv_nsec, 5000000);
}

}  // namespace kzm::ModbusDeviceModel::Test
