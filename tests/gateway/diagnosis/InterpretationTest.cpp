#include "gateway/diagnosis/Interpretation.h"

#include <gtest/gtest.h>

namespace kzm::ModbusGateway::InterpretationTest {

using ModbusDeviceModel::ByteOrderingEnum;

constexpr auto BIG = ByteOrderingEnum::BIG_ENDIAN_WORDS;
constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;
constexpr bool EXCHANGED = true;

struct Row {
    Interpretation way;
    std::vector<std::uint16_t> registers;
    const char* value;
    const char* why = "";
};

// clang-format off
const Row ROWS[] = {
    {{"uint16"}, {0xEFFF}, "61439"}, {{"uint16", 1}, {0xF000}, "61440", "near the end of its range"},
    {{"uint16", 1}, {0xFFFF}, "65535", "a usual pattern of \"not available\""}, {{"int16", 1}, {0xFFFF}, "-1"},
    {{"int16", 1}, {0x8000}, "-32768", "a usual pattern of \"not available\""},
    {{"int16", 1}, {0xBFFF}, "-16385", "near the end of its range"}, {{"int16", 1}, {0xC000}, "-16384"},
    {{"uint16", 1, BIG, EXCHANGED}, {0xE600}, "230"},
    {{"uint32", 2}, {0x0001, 0xE240}, "123456"}, {{"uint32", 2, LITTLE}, {0x0001, 0xE240}, "3795845121", "huge"},
    {{"uint32", 2}, {0x3B9A, 0xCA00}, "1000000000"}, {{"uint32", 2}, {0x3B9A, 0xCA01}, "1000000001", "huge"},
    {{"uint32", 2, LITTLE}, {0x1234, 0}, "4660"}, {{"uint32", 2}, {0x1234, 0}, "305397760", "the least significant register is zero"},
    {{"int32", 2, LITTLE}, {0xFFFB, 0xFFFF}, "-5"}, {{"int32", 2}, {0xFFFF, 0xFFFF}, "-1", "a usual pattern of \"not available\""},
    {{"int32", 2, LITTLE}, {0, 0x8000}, "-2147483648", "a usual pattern of \"not available\""}, {{"uint32", 2}, {0, 0}, "0"},
    {{"uint32", 2, BIG, EXCHANGED}, {0x0100, 0x40E2}, "123456"}, {{"uint32", 2, LITTLE, EXCHANGED}, {0x40E2, 0x0100}, "123456"},
    {{"float32", 2}, {0x4366, 0x8000}, "230.5"}, {{"float32", 2, LITTLE}, {0x4366, 0x8000}, "-2.4178003703460394e-41", "tiny"},
    {{"float32", 2}, {0x7FC0, 0}, "null", "not a value of this type"}, {{"float32", 2}, {0x5015, 0x02F9}, "10000000000.0", "huge"},
    {{"float32", 2, BIG, EXCHANGED}, {0x6643, 0x0080}, "230.5"},
    {{"uint64", 3}, {1, 0, 2}, "4294967298"}, {{"int64", 4, LITTLE}, {1, 0, 0, 0}, "1"}, {{"int64", 4}, {1, 0, 0, 1}, "281474976710657", "huge"},
    {{"float64", 4}, {0x406C, 0xD000, 0, 0}, "230.5"},
    {{"text", 2}, {0x5750, 0x3300}, "\"WP3\""}, {{"text", 2}, {0x571F, 0x3300}, "\"W\\u001f3\"", "not printable"},
    {{"text", 1}, {0x577F}, "\"W\\u007f\"", "not printable"}, {{"text", 1}, {0x577E}, "\"W~\""},
    {{"text", 1}, {0x5700}, "\"W\"", "fewer than two characters"}, {{"text", 1}, {0xE957}, "\"\\ufffdW\"", "not printable"},
    {{"text-swapped", 1}, {0x5057}, "\"WP\""}, {{"mod10k-unsigned-2", 2}, {5678, 1234}, "12345678"},
    {{"uint32", 2}, {1}, "null", "not a value of this type"}, {{"scaled-power-34", 1}, {1}, "null", "not a value of this type"},
    {{"int32", 1}, {1}, "null", "not a value of this type"}, {{"word", 1}, {1}, "null", "not a value of this type"},
};
// clang-format on

TEST(Interpretation, ValuesAndWhatIsImplausibleOfThem) {
    for (const auto& [way, registers, value, why] : ROWS) {
        SCOPED_TRACE(std::string(way.type) + ' ' + value);
        EXPECT_EQ(way.ValueOf(registers).dump(-1, ' ', true), value);
        EXPECT_EQ(way.WhyImplausible(registers), why);
    }
    const std::uint16_t registers[] = {0xFFFB};
    EXPECT_EQ((Interpretation{"int16", 1}.ValueOf(registers, 0.5, 10).dump()), "7.5");
    EXPECT_EQ((Interpretation{"int16", 1}.ValueOf(registers, 10).dump()), "-50");
    EXPECT_EQ((Interpretation{"float64", 4}.GetPrecision()), NumberPrecision::DOUBLE);
    EXPECT_EQ((Interpretation{"float64", 4}.GetPrecision(0.1)), NumberPrecision::DIGITS_15);
    EXPECT_EQ((Interpretation{"uint16", 1}.GetPrecision()), NumberPrecision::DIGITS_15);
}

TEST(Interpretation, EachIsListedWithTheProfilesMembersThatGiveIt) {
    const auto membersOf = [](std::size_t count) {
        std::vector<std::string> texts;
        for (const Interpretation& way : Interpretation::AllOf(count)) {
            texts.push_back(way.GetProfileMembers());
        }
        return texts;
    };
    const std::string sum = "a computation: the \"sum\" of its bytes";
    EXPECT_EQ(membersOf(1),
              (std::vector<std::string>{R"("type": "uint16")", R"("type": "int16")", R"("type": "text", "count": 1)",
                                        R"("type": "text-swapped", "count": 1)", sum, ""}));
    EXPECT_EQ(membersOf(3),
              (std::vector<std::string>{R"("type": "uint64", "count": 3, "order": "big")",
                                        R"("type": "uint64", "count": 3, "order": "little")",
                                        R"("type": "text", "count": 3, "order": "big")",
                                        R"("type": "text-swapped", "count": 3, "order": "big")", sum, sum}));
    EXPECT_EQ(membersOf(2).size(), 14U);
    EXPECT_EQ(membersOf(4).size(), 14U);
    EXPECT_EQ(membersOf(127).front(), R"("type": "text", "count": 127)");
    EXPECT_EQ((Interpretation{"int32", 2, LITTLE}.GetProfileMembers(0.1, -40.5F)),
              R"("type": "int32-to-float", "order": "little", "scale": 0.1, "offset": -40.5)");
    EXPECT_TRUE(membersOf(0).empty() && membersOf(128).empty());
}

}  // namespace kzm::ModbusGateway::InterpretationTest
