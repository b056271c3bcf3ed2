#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test::ElementDataTest {

std::string Swapped(void (*swap)(unsigned char*, unsigned), const std::string& text) {
    Bytes bytes(text.begin(), text.end());
    swap(bytes.data(), static_cast<unsigned>(bytes.size()));
    return {bytes.begin(), bytes.end()};
}

TEST(ElementData, SwapsReverseWordsAndBytesOfTheLengthsTheyKnow) {
    const std::tuple<const char*, const char*, const char*, const char*> ROWS[] = {
        {"A", "A", "A", "A"},
        {"AB", "AB", "BA", "BA"},
        {"ABC", "ABC", "ABC", "ABC"},
        {"ABCD", "CDAB", "BADC", "DCBA"},
        {"ABCDE", "ABCDE", "ABCDE", "ABCDE"},
        {"ABCDEF", "EFCDAB", "BADCFE", "FEDCBA"},
        {"ABCDEFGH", "GHEFCDAB", "BADCFEHG", "HGFEDCBA"},
        {"ABCDEFGHIJ", "ABCDEFGHIJ", "ABCDEFGHIJ", "ABCDEFGHIJ"}};
    for (const auto& [bytes, words, inWords, both] : ROWS) {
        EXPECT_EQ(Swapped(ElementData::WordSwap, bytes), words);
        EXPECT_EQ(Swapped(ElementData::ByteSwap, bytes), inWords);
        EXPECT_EQ(Swapped(ElementData::ByteAndWordSwap, bytes), both);
    }
    ElementData::ByteAndWordSwap(nullptr, 4);
}

TEST(ElementData, WordsAreSwappedByTheElementElseByTheDeviceElseByTheCode) {
    const auto order = [](int number) { return static_cast<ByteOrderingEnum>(number); };
    const struct {
        int code, order;
        bool deviceBigEndian;
        const char *bytes, *expected;
        bool swaps;
    } ROWS[] = {{14, 0, true, "00010002", "u65538", false},
                {14, 0, false, "00010002", "u131073", true},
                {14, 1, false, "00010002", "u65538", false},
                {14, 2, false, "00010002", "u65538", false},
                {14, 3, true, "00010002", "u131073", true},
                {14, -5, false, "00010002", "u65538", false},
                {2, 3, true, "0102", "u258", true},
                {27, 3, true, "000100020003", "u12885032961", true},
                {27, 3, true, "0001000200030004", "u1125912791875585", true},
                {51, 0, true, "00010002", "i20001", true},
                {51, 0, false, "00010002", "i20001", true},
                {51, 3, false, "00010002", "i20001", true},
                {60, 3, true, "C0200000", "f-2.5", true}};
    for (const auto& row : ROWS) {
        EXPECT_EQ(Decode({.code = row.code, .order = order(row.order)}, row.bytes, row.deviceBigEndian), row.expected)
            << "code " << row.code << ", order " << row.order << ", device " << row.deviceBigEndian;
        const auto element = MakeElement({.code = row.code, .order = order(row.order)});
        EXPECT_EQ(element.MustSwapWords(row.deviceBigEndian), row.swaps) << "code " << row.code;
        EXPECT_EQ(MakeElement({.order = order(row.order)}).IsLocalEndianessIsBigEndian(), row.order != 3);
    }
    EXPECT_TRUE(MakeElement({.code = 21}).IsLogicCodeManageInLittleEndian(LogicCodeIdentifier{2}));
    EXPECT_FALSE(MakeElement({.code = 2}).IsLogicCodeManageInLittleEndian(LogicCodeIdentifier{21}));
}

TEST(ElementData, TheNotAvailablePatternIsComparedAfterTheSwapAndBeforeTheMask) {
    const struct {
        const char *pattern, *mask, *bytes, *expected;
        bool deviceBigEndian = true;
    } ROWS[] = {{"0xFFFF", "FFFF", "FFFF", "null!"},
                {"0xFFFF", "FFFF", "FFFE", "u65534"},
                {"0xFFFF", "FFFF", "7FFF", "u32767"},
                {"0xFFFF", "FFFF", "FFFFFFFF", "null!"},  // another length is invalid
                {"0xffFf", "0000", "FFFF", "null!"},
                {"0x0000", "00FF", "0100", "u0"},
                {"0x80000000", "FFFFFFFF", "00008000", "null!", false},
                {"0x80000000", "FFFFFFFF", "80000000", "u32768", false},
                {"", "FFFF", "0000", "null!"},
                {"0", "FFFF", "0000", "null!"},
                {"0xFFF", "FF", "FF", "null!"},
                {"0x 5", "FF", "05", "null!"},  // read as a text to number conversion reads it
                {"0x-5", "FF", "05", "u5"}};
    for (const auto& row : ROWS) {
        EXPECT_EQ(Decode({.code = 14, .mask = row.mask, .pattern = row.pattern}, row.bytes, row.deviceBigEndian),
                  row.expected)
            << row.pattern << " on " << row.bytes;
    }
    // Characters after the first differing byte are not parsed.
    EXPECT_EQ(Decode({.pattern = "0x01ZZ"}, "0002"), "u2");
    EXPECT_THROW(Decode({.pattern = "0xZZ00"}, "0002"), std::invalid_argument);
    EXPECT_THROW(Decode({.pattern = "0x01ZZ"}, "0102"), std::invalid_argument);
}

TEST(ElementData, TheBufferIsLeftSwappedAndMaskedAlsoWhereItMatchesThePattern) {
    const std::pair<const char*, const char*> rows[] = {{"80001234", "80000230"}, {"FFFFFFFE", "F0000FF0"}};
    for (const auto& [pattern, expected] : rows) {
        auto element = MakeElement(
            {.code = 14, .order = ByteOrderingEnum::LITTLE_ENDIAN_WORDS, .mask = "F0000FF0", .pattern = "0x80001234"});
        Bytes bytes = Hex(pattern);
        ElementData::WordSwap(bytes.data(), 4);
        bool invalid = false;
        json value = "before";
        EXPECT_TRUE(element.Build(bytes.data(), 4, true, 0, invalid, value, nullptr));
        EXPECT_EQ(invalid, value.is_null()) << pattern;
        EXPECT_EQ(bytes, Hex(expected)) << pattern;
    }
}

TEST(ElementData, BytesThatCannotBeDecodedAreRefused) {
    CapturedLog log;
    auto element = MakeElement({.code = 62});
    bool invalid = false;
    json value = "before";
    Bytes bytes(300, 'x');
    const auto build = [&](unsigned char* buffer, unsigned length) {
        return element.Build(buffer, length, true, 0, invalid, value, nullptr);
    };
    EXPECT_FALSE(build(nullptr, 2));
    EXPECT_FALSE(build(bytes.data(), 0));
    EXPECT_FALSE(invalid);
    EXPECT_EQ(log.Texts(OrbaLogLevel::INFORMATION),
              std::vector<std::string>(2, "[DataModel::ElementData] [Build] Invalid Input param"));
    EXPECT_FALSE(build(bytes.data(), 256));
    EXPECT_TRUE(invalid);
    EXPECT_EQ(value, "before");
    EXPECT_EQ(log.Texts(OrbaLogLevel::ERROR).at(0),
              "[DataModel::ElementData] [Build] Received data exceed the max buffer size. Received = 256 bytes, Max = "
              "255 bytes");
    EXPECT_TRUE(build(bytes.data(), 255));
    EXPECT_EQ(value, std::string(255, 'x'));
    EXPECT_EQ(Decode({.mask = "FF"}, "0001"), "refused!");
    EXPECT_EQ(log.Texts(OrbaLogLevel::ERROR).size(), 2U);
}

}  // namespace kzm::ModbusDeviceModel::Test::ElementDataTest
