#include "gateway/model/ValueEncoder.h"

#include "src/TestElement.h"

namespace kzm::ModbusGateway::ValueEncoderTest {

using namespace ModbusDeviceModel::Test;
using ModbusDeviceModel::ByteOrderingEnum;

constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;

std::string Words(const EncodedValue::Registers& registers) {
    std::string text;
    for (const std::uint16_t word : registers) {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%s%04X", text.empty() ? "" : " ", word);
        text += digits;
    }
    return text;
}

// The registers if they read back as the value, else why it is refused. All bits outside the mask are 1.
std::string Write(const Traits& traits, const std::string& text, bool deviceBigEndian) try {
    ElementData element = MakeElement(traits);
    const EncodedValue encoded = EncodeValue(element, deviceBigEndian, text);
    EncodedValue::Registers registers = encoded.registers;
    for (std::size_t i = 0; i < registers.size(); ++i) {
        EXPECT_EQ(registers[i] & ~encoded.mask[i], 0);
        registers[i] = static_cast<std::uint16_t>(registers[i] | ~encoded.mask[i]);
    }
    encoded.CheckReadBack(DecodeValue(element, deviceBigEndian, registers));
    return Words(encoded.registers);
} catch (const CannotEncode& refused) {
    return refused.what();
}

const auto SPEEDS = std::make_shared<Pairs>(Pairs{{0U, "Stop"}, {2U, "Slow"}, {3U, "Fast"}, {9U, "Turbo"}});
const auto FLOATS = std::make_shared<Pairs>(Pairs{{0.5F, "Half"}, {1.0F, "Whole"}, {1000.1F, "High"}});
// Labels of several raw values, of which one may be another label's, too.
const auto SHARED = std::make_shared<Pairs>(Pairs{{9U, "On"}, {4U, "Off"}, {5U, "Off"}, {4U, "Idle"}, {6U, "Idle"}});
const auto TEXTS = std::make_shared<Pairs>(Pairs{{"ab", "First"}, {"c", "Second"}});

struct Row {
    Traits traits;
    const char* text;
    const char* result;
};

// clang-format off
const Row ROWS[] = {
    {{.code = 2}, "65535", "FFFF"}, {{.code = 2}, "65536", "65536 is out of range"},
    {{.code = 2}, "-1", "-1 is out of range"}, {{.code = 2}, "1.5", "1.5 would be read back as 2"},
    {{.code = 2}, "ten", "\"ten\" is not a number"}, {{.code = 2}, "1e999", "\"1e999\" is not a number"},
    {{.code = 2, .pattern = "0xFFFF"}, "65535", "65535 would be read back as not available"},
    {{.code = 2, .mask = "00FF"}, "255", "00FF"}, {{.code = 2, .mask = "00FF"}, "256", "256 does not fit the mask"},
    {{.code = 25}, "-32768", "8000"}, {{.code = 25}, "32768", "32768 is out of range"},
    {{.code = 22, .mask = "00FF"}, "-5", "00FB"}, {{.code = 22}, "-129", "-129 is out of range"},
    {{.code = 13, .registers = 2}, "-2", "FFFF FFFE"},
    {{.code = 14, .order = LITTLE, .registers = 2}, "74565", "2345 0001"},
    {{.code = 14}, "65536", "65536 is out of range"},
    {{.code = 24, .registers = 4}, "-9223372036854775808", "8000 0000 0000 0000"},
    {{.code = 24, .registers = 4}, "9007199254740993", "9007199254740993 would be read back as 9007199254740992"},
    {{.code = 26, .registers = 3}, "-1", "-1 is out of range"},
    {{.code = 27, .order = LITTLE, .registers = 4}, "1", "0001 0000 0000 0000"},
    {{.code = 28, .registers = 4}, "-1", "-1 is out of range"},
    {{.code = 19, .registers = 3}, "123456789", "1A85 0929 0001"},
    {{.code = 20, .registers = 3}, "-20003", "FFFD FFFE 0000"},
    {{.code = 19, .registers = 3}, "999999999999", "270F 270F 270F"}, {{.code = 51, .registers = 2}, "99999999", "270F 270F"},
    {{.code = 51, .registers = 2}, "100000000", "100000000 is out of range"},
    {{.code = 52, .registers = 4}, "-1", "-1 is out of range"},
    {{.code = 6, .scale = 0.1, .offset = -40.0F}, "21.5", "0267"},
    {{.code = 6, .scale = 0.1, .offset = -40.0F}, "21.55", "21.55 would be read back as 21.5"},
    {{.code = 2, .scale = 10}, "40", "0004"}, {{.code = 2, .scale = 10}, "45", "45 would be read back as 50"},
    {{.code = 2, .scale = 0}, "1", "1 is out of range"}, {{.code = 31, .registers = 2}, "0.1", "3DCC CCCD"},
    {{.code = 31, .order = LITTLE, .registers = 2}, "49.984375", "F000 4247"},
    {{.code = 31, .registers = 2}, "1e39", "1e39 is out of range"},
    {{.code = 31, .registers = 2}, "16777217", "16777217 would be read back as 16777216"},
    {{.code = 31, .scale = 0.001, .registers = 2}, "7", "45DA C000"},
    {{.code = 31, .scale = 0.1, .registers = 2}, "12345678", "12345678 would be read back as 12345678.4"},
    {{.code = 31, .scale = 0.1, .registers = 2}, "12345678.4", "4CEB 79A2"},
    {{.code = 31, .registers = 2}, "1e+20", "60AD 78EC"},
    {{.code = 32, .registers = 4}, "9007199254740993", "9007199254740993 would be read back as 9007199254740992"},
    {{.code = 32, .registers = 4}, "-9007199254740993.0", "-9007199254740993 would be read back as -9007199254740992"},
    {{.code = 32, .registers = 4}, "1e+300", "7E37 E43C 8800 759C"},
    {{.code = 38, .registers = 2}, "16777217", "16777217 would be read back as 16777216"},
    {{.code = 33, .scale = 3, .offset = 0.1F, .registers = 2}, "0", "BD08 8888"},
    // Values shown for the first and last raw values of a type.
    {{.code = 2, .scale = 0.1}, "6554", "FFFF"}, {{.code = 2, .scale = 0.1}, "6555", "6555 is out of range"},
    {{.code = 25, .scale = 0.1}, "-3277", "8000"}, {{.code = 25, .scale = 0.01, .offset = 5}, "333", "7FFF"},
    {{.code = 24, .registers = 4}, "9223372036854775807", "7FFF FFFF FFFF FFFF"},
    {{.code = 24, .registers = 4}, "9223372036854775808", "9223372036854775808 is out of range"},
    {{.code = 27, .registers = 4}, "18446744073709551615", "FFFF FFFF FFFF FFFF"},
    {{.code = 27, .registers = 4}, "18446744073709551616", "18446744073709551616 is out of range"},
    {{.code = 29, .registers = 4}, "9.223372036854775807e18", "7FFF FFFF FFFF FFFF"},
    {{.code = 52, .registers = 4}, "9999999999999999", "270F 270F 270F 270F"},
    {{.code = 21, .registers = 4}, "-9999999999999999", "D8F1 D8F1 D8F1 D8F1"},
    {{.code = 52, .scale = 10, .registers = 4}, "99999999999999950", "270B 270F 270F 270F"},
    {{.code = 51, .scale = 0.29, .registers = 2}, "29", "0065 0000"},
    {{.code = 2, .scale = 0, .offset = 5}, "5", "0000"},
    {{.code = 2}, "007", "0007"}, {{.code = 2}, "+7.", "0007"}, {{.code = 31, .registers = 2}, "-0", "8000 0000"}, {{.code = 31, .registers = 2}, ".5", "3F00 0000"},
    {{.code = 2}, "1e3", "03E8"}, {{.code = 2}, "+-7", "\"+-7\" is not a number"}, {{.code = 2}, ".0", "0000"}, {{.code = 2}, "", "\"\" is not a number"},
    {{.code = 2}, "0x10", "\"0x10\" is not a number"}, {{.code = 31, .registers = 2}, "inf", "\"inf\" is not a number"},
    {{.code = 60, .registers = 2}, "1", "0000 3F80"}, {{.code = 33, .registers = 2}, "255", "437F 0000"},
    {{.code = 32, .registers = 4}, "-2.5", "C004 0000 0000 0000"},
    {{.code = 0, .mask = "0030", .pairs = SPEEDS}, "Slow", "0020"},
    {{.code = 0, .mask = "0030", .pairs = SPEEDS}, "3", "0030"},
    {{.code = 0, .mask = "0030", .pairs = SPEEDS}, "Turbo", "Turbo does not fit the mask"},
    {{.code = 0, .pairs = SPEEDS}, "Slaw", "\"Slaw\" is not a label; did you mean \"Slow\"? Allowed: \"Stop\", \"Slow\", \"Fast\", \"Turbo\""},
    {{.code = 0, .pairs = SHARED}, "of", "\"of\" is not a label; did you mean \"Off\"? Allowed: \"On\", \"Off\", \"Idle\""},
    {{.code = 0, .pairs = SPEEDS}, "1", "\"1\" is not a label; allowed: \"Stop\", \"Slow\", \"Fast\", \"Turbo\""},
    {{.code = 0, .mask = "0007", .pairs = SHARED}, "Off", "0004"}, {{.code = 0, .mask = "0003", .pairs = SHARED}, "Off", "Off does not fit the mask"},
    {{.code = 0, .mask = "0005", .pairs = SHARED}, "Off", "0004"}, {{.code = 23, .mask = "0003", .pairs = SPEEDS}, "2", "0002"},
    {{.code = 23, .mask = "0006", .pairs = SHARED}, "Idle", "0006"}, {{.code = 23, .mask = "0005", .pairs = SHARED}, "4", "0004"},
    {{.code = 11, .mask = "00000F00", .registers = 2}, "11", "0000 0B00"},
    {{.code = 23, .mask = "00FF", .pairs = SPEEDS}, "Turbo", "0009"}, {{.code = 23}, "255", "00FF"}, {{.code = 23}, "256", "256 is out of range"},
    {{.code = 30, .pairs = FLOATS, .registers = 2}, "Half", "3F00 0000"},
    {{.code = 30, .pairs = FLOATS, .registers = 2}, "1", "3F80 0000"},
    {{.code = 30, .pairs = FLOATS, .registers = 2}, "1000.1", "447A 0666"},
    {{.code = 10, .mask = "0100"}, "true", "0100"}, {{.code = 10}, "0", "0000"},
    {{.code = 10, .offset = 1.0F}, "false", "false would be read back as true"},
    {{.code = 10, .offset = -1.0F}, "false", "0001"}, {{.code = 10, .offset = -1.0F}, "true", "0000"},
    {{.code = 10, .registers = 0}, "false", "the type boolean cannot be held in 0 registers"},
    {{.code = 10, .mask = "0100000000000000000000", .registers = 5}, "true", "the type boolean cannot be held in 5 registers"},
    {{.code = 10}, "yes", "\"yes\" is neither true nor false"},
    {{.code = 10, .mask = "0000"}, "true", "no bit of the registers belongs to the element"},
    {{.code = 62, .registers = 2}, "abc", "6162 6300"},
    {{.code = 62, .registers = 1}, "abc", "\"abc\" has more than 2 bytes"},
    {{.code = 43, .registers = 2}, "abc", "6261 0063"},
    {{.code = 41, .mask = "00FF00FF", .registers = 2}, "ab", "0061 0062"},
    {{.code = 62, .order = LITTLE, .registers = 2}, "abcd", "6364 6162"},
    {{.code = 61, .pairs = TEXTS, .registers = 1}, "Second", "6300"},
    {{.code = 61, .pairs = TEXTS, .registers = 1}, "ab", "6162"},
    {{.code = 57, .registers = 2}, "0070000", "0001 1170"},
    {{.code = 44, .registers = 4}, "2026", "the type datetime-iec870 cannot be written"}};
// clang-format on

TEST(ValueEncoder, GivesRegistersThatReadBackAsTheValueOrTheReason) {
    for (const auto& [traits, text, result] : ROWS) {
        EXPECT_EQ(Write(traits, text, /*deviceBigEndian=*/true), result) << "code " << traits.code << " " << text;
    }
}

TEST(ValueEncoder, FollowsTheWordOrderOfTheDeviceWhereTheElementHasNone) {
    EXPECT_EQ(Write({.code = 13, .registers = 2}, "-2", /*deviceBigEndian=*/false), "FFFE FFFF");
}

}  // namespace kzm::ModbusGateway::ValueEncoderTest
