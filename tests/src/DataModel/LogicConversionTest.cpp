#include <cmath>

#include "DataModel/RawRecord.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test::LogicConversionTest {

struct Row {
    int code;
    const char* registers;
    const char* expected;
    double scale = 1.0;
    float offset = 0.0F;
};

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(Decode({.code = row.code, .scale = row.scale, .offset = row.offset}, row.registers), row.expected)
            << "code " << row.code << ", registers " << row.registers << ", scale " << row.scale << ", offset "
            << row.offset;
    }
}

// clang-format off
TEST(LogicConversion, ANumberIsReadWithItsSignAndWidthAndStoredAsItsOutputType) {
    Check({
        {2, "FFFE", "u65534"}, {3, "FFFE", "i-2"}, {4, "FFFE", "i65534"}, {5, "FFFE", "u65534"}, {6, "FFFE", "f-2.0"},
        {7, "FFFE", "f65534.0"}, {8, "FFFE", "f65534.0"}, {13, "FFFFFFFE", "i-2"}, {14, "FFFFFFFE", "u4294967294"},
        {15, "FFFFFFFE", "i-2"}, {16, "FFFFFFFE", "i4294967294"}, {17, "FFFFFFFE", "f-2.0"},
        {18, "FFFFFFFE", "f4294967294.0"}, {22, "01FE", "f-2.0"}, {24, "FFFFFFFFFFFFFFFE", "i-2"}, {25, "FFFE", "i-2"},
        {26, "FFFFFFFFFFFFFFFE", "i-2"}, {27, "0000000100000002", "u4294967298"},
        {28, "0000000100000002", "u4294967298"}, {29, "FFFFFFFFFFFFFFFE", "f-2.0"}, {31, "C0200000", "f-2.5"},
        {32, "C004000000000000", "f-2.5"}, {33, "42280000", "u42"}, {38, "C2280000", "i-42"}, {60, "0000C020", "f-2.5"},
    });
}

TEST(LogicConversion, BytesArePlacedByTheirWeightWhateverTheirNumber) {
    Check({
        {2, "0102", "u258"}, {2, "05", "u5"}, {27, "010203040506", "u1108152157446"},
        {27, "FF 0001020304050607", "u283686952306183"}, {31, "FFFF C0200000", "f-2.5"},
    });
}

TEST(LogicConversion, AValueIsRoundedHalfAwayFromZeroAndMustFitItsTypeBeforeThat) {
    Check({
        {2, "FFFF", "u6554", 0.1}, {2, "0001", "u1", 0.5}, {2, "9C40", "null!", 2.0}, {2, "FFFF", "null!", 1.0, 0.25F},
        {2, "0000", "null!", 1.0, -0.25F}, {2, "0000", "u0", 1.0, 0.49F}, {25, "8000", "i-32768"},
        {25, "8000", "null!", 1.0, -0.5F}, {25, "7FFF", "null!", 1.0, 1.0F}, {25, "FFFF", "i-1", 0.5},
        {14, "00000000", "u0"}, {27, "00000000", "u0"}, {33, "437F0000", "u255"}, {33, "43800000", "null!"}, {5, "FFFF", "u4294967295", 65537},
        {5, "FFFF", "null!", 65537, 1.0F}, {3, "8000", "i-2147483648", 65536}, {3, "8000", "null!", 65536, -1.0F},
        {28, "FFFFFFFFFFFFFFFF", "null!"}, {27, "FFFFFFFFFFFFFFFF", "u18446744073709551615"},
        {27, "FFFFFFFFFFFFFFFF", "null!", 1.1}, {24, "7FFFFFFFFFFFFFFF", "i9223372036854775807"},
        {24, "8000000000000000", "i-9223372036854775808"}, {24, "8000000000000000", "null!", 1.1},
        {7, "0001", "f3.4028234663852886e+38", 3.4028234663852886e38}, {7, "0001", "null!", 3.5e38},
        {31, "7FC00000", "null!"}, {31, "FF800000", "null!"}, {38, "7F800000", "null!"},
        {32, "7FF8000000000000", "null!"}, {32, "7FF0000000000000", "null!"}, {32, "7E37E43C8800759C", "f1e+300"},
    });
}

TEST(LogicConversion, ScalingIsAMultiplicationAndAnAdditionRoundedEach) {
    Check({
        {7, "0003", "f0.0", 1.0 / 3, -1.0F},  // in one rounding: -5.6e-17
        {6, "FFFB", "f95.0", 1.0, 100.0F}, {6, "0001", "f1.1000000014901161", 1.0, 0.1F}, {10, "0000", "false"},
        {10, "0100", "true"}, {10, "0003", "true", 1.0 / 3, -1.0F},  // the one code that is rounded once
        {10, "0002", "false", 1.0, -2.0F}, {10, "0002", "null!", INFINITY},
    });
}

TEST(LogicConversion, DecimalWordsStandLeastSignificantFirst) {
    Check({
        {19, "0001 0002 0003", "i300020001"}, {20, "FFFF 0002 0003", "i300019999"},
        {21, "0001 FFFE 0003 0004", "i4000299980001"}, {49, "0001 0002", "f20001.0"}, {50, "FFFF 0002", "f19999.0"},
        {51, "270F 270F", "i99999999"}, {52, "270F 270F 270F 270F", "i9999999999999999"},
        {19, "0001 2710 0003", "null!"}, {51, "FFFF 0000", "null!"}, {20, "D8F1 0000 0000", "i-9999"},
        {20, "D8F0 0000 0000", "null!"}, {21, "0000 0000 0000 8000", "null!"}, {49, "0003 0000", "f1.5", 0.5},
        {50, "0003 0000", "f1.75", 0.5, 0.25F}, {51, "0003 0000", "i8", 2.0, 2.9F}, {51, "0003 0000", "i1", 0.5},
        {20, "FFFD 0000 0000", "i-1", 0.5}, {52, "270F 270F 270F 270F", "null!", 1000000.0},
        {51, "0001 0000", "null!", INFINITY}, {51, "0001 0000", "null!", 1.0, INFINITY},
        {51, "0001 0000", "null!", 1e19}, {51, "0000 0000", "i0", 1e19},
    });
}

TEST(LogicConversion, APowerFactorIsFoldedAtOne) {
    Check({
        {39, "3F800000", "f1.0"}, {39, "BF800000", "f-1.0"}, {39, "3F99999A", "f0.7999999523162842"},  // 1.2
        {39, "BFC00000", "f-0.5"},  // -1.5
        {39, "3F000000", "f50.25", 100.0, 0.25F},
        {39, "3F000000", "f0.05000000074505806", 0.1},  // the scale is no float: rounded to one at the end
        {39, "7FC00000", "null!"}, {39, "7F800000", "null!"}, {39, "3F000000", "null!", 1e300},
    });
}

TEST(LogicConversion, ThePowerFactorTellsQuadrantAndNatureOfTheLoad) {
    Check({
        {40, "C0000000", "\"QuadrantII\""},  // -2
        {40, "BF800000", "\"QuadrantII\""},  // -1
        {40, "BF7FF973", "\"QuadrantII\""},  // just below -0.9999
        {40, "BF7FF972", "\"QuadrantIII\""},  // just above
        {40, "BF7FF000", "\"QuadrantIII\""},  // -0.99976
        {40, "B9000000", "\"QuadrantIII\""},  // -0.00012
        {40, "80000000", "\"QuadrantI\""}, {40, "3F800000", "\"QuadrantI\""},
        {40, "3F801000", "\"QuadrantIV\""},  // 1.0005
        {40, "40000000", "\"QuadrantIV\""}, {40, "40004000", "null!"},  // 2.004
        {40, "C0004000", "null!"}, {40, "7FC00000", "null!"}, {58, "3F7FBE76", "\"Lagging\""},  // just below 0.999
        {58, "3F7FBE77", "\"Unity\""}, {58, "BF000000", "\"Lagging\""}, {58, "BFC00000", "\"Leading\""},
        {59, "3F000000", "\"Inductive\""}, {59, "3FC00000", "\"Capacitive\""}, {59, "BF800000", "\"Unity\""},
        {58, "7FC00000", "null!"}, {59, "FF800000", "null!"},
    });
}

// An unknown frequency class leaves the value untouched.
TEST(LogicConversion, NumbersThatAreTexts) {
    Check({
        {53, "00000032", "i-2"}, {53, "0000003C", "i-2"}, {53, "00000190", "i-1"}, {53, "00000033", "\"before\""},
        {57, "FFFFFFFF", "\"4294967295\""}, {57, "0000", "\"0\""}, {54, "3039", "\"012.345.000\""},
        {55, "3039", "\"002.003.045\""}, {56, "3039", "\"001.002.345\""}, {54, "0007", "\"000.007.000\""},
        {56, "FFFF", "\"006.005.535\""},
    });
}

// clang-format on
TEST(LogicConversion, CodesWithoutConversionAreRefused) {
    for (const int code : {34, 35, 36, 37, 200, 255}) {
        EXPECT_EQ(Decode({.code = code}, "0001"), "refused") << code;
    }
}

TEST(LogicConversion, TextIsTakenByMaskSwappedOrAsItIsAndEndsAtNul) {
    EXPECT_EQ(Decode({.code = 62}, "41 42 00 43"), "\"AB\"");
    EXPECT_EQ(Decode({.code = 62}, "41 C3 42 00"),
              "\"A\xEF\xBF\xBD"
              "B\"");
    EXPECT_EQ(Decode({.code = 43}, "42 41 44 43 45"), "\"ABCD\"");
    EXPECT_EQ(Decode({.code = 43}, "41"), "\"\"");
    EXPECT_EQ(Decode({.code = 41, .mask = "00FF00FF"}, "11 41 22 42"), "\"AB\"");
    EXPECT_EQ(Decode({.code = 41, .mask = "007F"}, "FF C1"), "\"A\"");
}

TEST(LogicConversion, AnEnumerationGivesTheFirstLabelThatMatches) {
    const auto pairs = std::make_shared<Pairs>(Pairs{{1U, "one"}, {1U, "other"}, {2U, ""}, {0x10000U, "big"}});
    const Traits unshifted{.code = 9, .pairs = pairs};
    EXPECT_EQ(Decode(unshifted, "0001"), "\"one\"");
    EXPECT_EQ(Decode(unshifted, "0002"), "\"\"!");
    EXPECT_EQ(Decode(unshifted, "0003"), "null!");
    EXPECT_EQ(Decode({.code = 11, .pairs = pairs}, "00010000"), "\"big\"");
    EXPECT_EQ(Decode({.code = 23, .pairs = pairs}, "FF01"), "\"one\"");
    // Shifted until the lowest bit of the mask is bit 0; a mask of zeros leaves 0.
    EXPECT_EQ(Decode({.code = 0, .mask = "0030", .pairs = pairs}, "FFDF"), "\"one\"");
    EXPECT_EQ(Decode({.code = 12, .mask = "00030000", .pairs = pairs}, "0001FFFF"), "\"one\"");
    EXPECT_EQ(Decode({.code = 1, .mask = "0000"}, "FFFF"), "\"0\"");
    EXPECT_EQ(Decode({.code = 11, .mask = "80000000"}, "FFFFFFFF"), "\"1\"");
    // A mask shorter than the number is as wide as the data; one of the number's width is taken as it is.
    const auto trip = std::make_shared<Pairs>(Pairs{{0U, "Off"}, {5U, "Trip"}});
    EXPECT_EQ(Decode({.code = 11, .mask = "FFFF", .pairs = trip}, "0005"), "\"Trip\"");
    EXPECT_EQ(Decode({.code = 12, .mask = "FFFF00", .pairs = trip}, "0005"), "\"Trip\"");
    EXPECT_EQ(Decode({.code = 11, .mask = "00F0", .pairs = trip}, "FF5F"), "\"Trip\"");
    EXPECT_EQ(Decode({.code = 1, .mask = "F0", .pairs = trip}, "5F"), "\"Trip\"");
    EXPECT_EQ(Decode({.code = 11, .mask = "FFFF0000", .pairs = trip}, "0005"), "\"Off\"");
    // Without pairs, the number itself.
    EXPECT_EQ(Decode({.code = 0, .mask = "0F00"}, "1234"), "\"2\"");
    EXPECT_EQ(Decode({.code = 9}, "FFFF"), "\"65535\"");
    EXPECT_EQ(Decode({.code = 23}, "01FF"), "\"255\"");
    EXPECT_EQ(Decode({.code = 12, .pairs = std::make_shared<Pairs>()}, "FFFFFFFF"), "\"4294967295\"");
    EXPECT_EQ(Decode({.code = 30}, "3DCCCCCD"), "\"0.1\"");
    EXPECT_EQ(Decode({.code = 30}, "7FC00000"), "null!");
}

TEST(LogicConversion, FloatAndTextPairsMatchExactly) {
    const auto floats = std::make_shared<Pairs>(Pairs{{1U, "integer"}, {0.1F, "tenth"}});
    EXPECT_EQ(Decode({.code = 30, .pairs = floats}, "3DCCCCCD"), "\"tenth\"");
    EXPECT_EQ(Decode({.code = 30, .pairs = floats}, "3DCCCCCE"), "null!");
    EXPECT_EQ(Decode({.code = 30, .pairs = floats}, "00000001"), "null!");
    const auto texts = std::make_shared<Pairs>(Pairs{{"AB", "alpha"}, {"", "nothing"}, {0x44434241U, "number"}});
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "4142"), "\"alpha\"");
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "41420043"), "\"alpha\"");
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "4141"), "null!");
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "0041"), "\"nothing\"");
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "41424344"), "\"number\"");
    EXPECT_EQ(Decode({.code = 61, .pairs = texts}, "4142434445"), "null!");  // all 64 bits count
    EXPECT_EQ(Decode({.code = 42, .mask = "00FF00FF", .pairs = texts}, "99419942"), "\"alpha\"");
    EXPECT_EQ(Decode({.code = 42}, "4142"), "null");
}

// Calls the protected interface for derived classes.
struct Encoder : ElementData {
    explicit Encoder(const Traits& traits) : ElementData(MakeElement(traits)) {}
    template <typename T>
    std::string Encode(std::uint64_t raw, bool invalid) {
        myData data;
        data.SetUnsigned(raw);
        const json label = EncodeEnumValue<T>(data, invalid);
        return Typed(label) + (invalid ? "!" : "");
    }
};

TEST(LogicConversion, ANumberWithoutPairsIsTextOnlyForEnumerationsOfNumbers) {
    for (const int code : {0, 1, 9, 11, 12, 23}) {
        EXPECT_EQ(Encoder({.code = code}).Encode<unsigned short>(5, false), "\"5\"") << code;
        EXPECT_EQ(Encoder({.code = code}).Encode<unsigned int>(70000, true), "\"70000\"!") << code;
    }
    for (const int code : {2, 10, 31, 42, 53, 61, 255}) {
        EXPECT_EQ(Encoder({.code = code}).Encode<unsigned char>(5, false), "null") << code;
    }
    EXPECT_EQ(Encoder({.code = 30}).Encode<float>(0x3F000000, false), "\"0.5\"");
    const auto pairs = std::make_shared<Pairs>(Pairs{{5U, "five"}});
    EXPECT_EQ(Encoder({.code = 9, .pairs = pairs}).Encode<unsigned short>(6, false), "null!");
}

TEST(LogicConversion, ScaleAndOffsetChangeTheValuesOfTheFamiliesThatAreScaled) {
    for (const auto& row : DeviceProfile::LogicCodeRows()) {
        const auto decode = [&](double scale, float offset) {
            return Decode({.code = row.code, .scale = scale, .offset = offset, .registers = row.maxRegisters},
                          row.view == DeviceProfile::RawView::FLOAT ? "3F000000" : "0001000100010001");
        };
        const auto scaling = DeviceProfile::ScalingOf(row.family);
        if (scaling != DeviceProfile::Scaling::FACTOR) {
            const bool isScaled = scaling == DeviceProfile::Scaling::FACTOR_AND_OFFSET;
            EXPECT_EQ(decode(1, 0) != decode(0, 0), isScaled) << row.name;
            EXPECT_EQ(decode(0, 0) != decode(0, 3), isScaled) << row.name;
        }
    }
}

TEST(LogicConversion, DatesArePrintedAsTheyStand) {
    Check({
        {44, "00 18 03 0F 0A 1E EA60", "\"2024-03-15T10:30:60.000+00:00\""},
        {44, "FF 18 F3 EF EA DE 03E7", "\"2024-03-15T10:30:00.000+00:00\""},
        {44, "00 C8 00 00 1F 3F FFFF", "\"2200-01-01T31:63:65.000+00:00\""},
        {45, "0C 1F 7C 17 3B 3A", "\"2024-12-31T23:59:58.000+00:00\""},
        {45, "0F 00 00 00 00 FF", "\"1900-15-01T00:00:255.000+00:00\""},
        {46, "0000 0000 0000", "\"2000-01-01T00:00:00.0+00:00\""},
        {46, "4792 BC80 FC05", "\"2038-01-19T03:14:08.5+00:00\""},
        {46, "FFFF FFFF 03FF", "\"2136-02-07T06:28:15.1023+00:00\""},
        {46, "08F6 C900 0005 0000", "\"2004-10-06T15:17:20.5+00:00\""},
        {47, "03 0F 7C 0A 1E 05 0007", "\"2024-03-15T10:30:05.7+00:00\""},
        {48, "03 0F 31 0A 1E 05", "\"2049-03-15T10:30:05.000+00:00\""},
        {48, "03 0F 32 0A 1E 05", "\"1950-03-15T10:30:05.000+00:00\""},
        {48, "03 0F 96 0A 1E 05", "\"1950-03-15T10:30:05.000+00:00\""},
    });
}

}  // namespace kzm::ModbusDeviceModel::Test::LogicConversionTest
