#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test {

std::string Text(const std::string& hex) {
    const Bytes bytes = Hex(hex);
    return {bytes.begin(), bytes.end()};
}

TEST(TextDecoding, EveryByteThatIsNoUtf8IsReplaced) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"6B 57 68", "6B 57 68"},
        {"C2B0 43 20 E282AC 20 F09F948B", "C2B0 43 20 E282AC 20 F09F948B"},
        {"41 C3 42", "41 EFBFBD 42"},
        {"E2 82", "EFBFBD EFBFBD"},
        {"F0 9F 94", "EFBFBD EFBFBD EFBFBD"},
        {"80", "EFBFBD"},
        {"F8 FF", "EFBFBD EFBFBD"},
        {"C080 EDA080", "C080 EDA080"},  // overlong forms and surrogates are let through
        {"61 00 62", "61 00 62"}};
    for (const auto& [bytes, expected] : rows) {
        std::string text = Text(bytes);
        ElementData::SanitiseUTF8Sequence(text);
        EXPECT_EQ(text, Text(expected)) << bytes;
    }
}

TEST(TextDecoding, AnInvalidSequenceKeepsTheLengthThatItsLeadByteAnnounces) {
    const std::tuple<const char*, bool, unsigned> rows[] = {{"41", true, 1},      {"C3", false, 2},
                                                            {"E28241", false, 3}, {"F09F948B", true, 4},
                                                            {"80", false, 1},     {"F880", false, 1}};
    for (const auto& [bytes, isValid, expected] : rows) {
        std::string text = "_" + Text(bytes);
        unsigned position = 1;
        unsigned length = 0;
        EXPECT_EQ(ElementData::CheckUTF8Validity(text, position, length), isValid) << bytes;
        EXPECT_EQ(length, expected) << bytes;
    }
    std::string text = "A";
    for (unsigned position : {1U, 2U, 0xFFFFFFFFU}) {
        unsigned length = 0;
        EXPECT_FALSE(ElementData::CheckUTF8Validity(text, position, length)) << position;
        EXPECT_EQ(length, 1U) << position;
    }
}

TEST(DateTimeDecoding, UlpGivesSecondsSince1970AndNanoseconds) {
    std::timespec time{};
    ElementData::DecodeDateTimeULPToIEC870(time, "\x00\x01\x00\x02\xFC\x05");
    EXPECT_EQ(time.tv_sec, 946684800 + 65538);
    EXPECT_EQ(time.tv_nsec, 5000000);
}

}  // namespace kzm::ModbusDeviceModel::Test
