#include "gateway/diagnosis/Guess.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kzm::ModbusGateway::GuessTest {

using ModbusDeviceModel::ModbusFunctionCode;

constexpr std::uint64_t READ = 1773480413000;  // 2026-03-14T09:26:53Z

std::vector<std::uint16_t> Words(const std::string& hex) {
    std::istringstream stream(hex);
    stream >> std::hex;
    return {std::istream_iterator<std::uint16_t>(stream), {}};
}

// Snapshots of one frame from register 100 on, ten seconds apart.
Capture CaptureOf(const std::vector<std::string>& snapshots, int function = 3) {
    Capture capture;
    capture.frames.names = {"frame"};
    const auto size = static_cast<std::uint16_t>(Words(snapshots.front()).size());
    capture.frames.frames.emplace_back(static_cast<ModbusFunctionCode>(function), false, std::int16_t{0}, size,
                                       std::uint16_t{100});
    for (const std::string& hex : snapshots) {
        const std::uint64_t time = READ + 10'000 * capture.snapshots.size();
        capture.snapshots.push_back({time, {{0, {Words(hex), time, ModbusDeviceModel::DeviceCache::QUALITY_GOOD}}}});
    }
    return capture;
}

std::string OrderText(const Guess& guess) {
    return guess.order.empty() ? "undecided" : guess.order;
}

// "100 uint32 big 12345; 102 ...": the division.
std::string TextOf(const Guess& guess) {
    std::string text;
    for (const auto& [value, chosen] : guess.division) {
        const Guess::Candidate& candidate = guess.values[value].candidates[chosen];
        text += (text.empty() ? "" : "; ") + std::to_string(guess.values[value].address) + ' ' + candidate.type +
                (candidate.order.empty() ? "" : ' ' + candidate.order) + ' ' +
                (candidate.isInvalid ? "invalid" : candidate.value.dump());
    }
    return text;
}

struct Row {
    const char* name;
    std::vector<std::string> snapshots;
    const char* order;
    const char* values;
};

// clang-format off
const Row ROWS[] = {
    {"floats, high word first", {"4366 4CCD 4365 B333 4366 A8F6 3FA1 CAC1"}, "big",
     "100 float32 big 230.3; 102 float32 big 229.7; 104 float32 big 230.66; 106 float32 big 1.264"},
    {"floats, low word first", {"4CCD 4366 B333 4365 A8F6 4366 0000 7FC0"}, "little",
     "100 float32 little 230.3; 102 float32 little 229.7; 104 float32 little 230.66; 106 float32 little invalid"},
    {"whole numbers whose high words count little", {"9D5D 0002 6143 0001 D04A FFFF 0000 8000"}, "little",
     "100 int32 little 171357; 102 int32 little 90435; 104 int32 little -12214; 106 int32 little invalid"},
    {"counters whose low words move", {"0000 FFE0 0000 1101 0000 0700", "0000 FFF4 0000 1103 0000 0700", "0001 0008 0000 1108 0000 0701"}, "big",
     "100 uint32 big 65504; 102 uint32 big 4353; 104 uint32 big 1792"},
    {"64 bits", {"0000 0000 0012 D687 0000 0000 0009 27C1 0000 0000 0001 E240"}, "big",
     "100 uint64 big 1234567; 104 uint64 big 600001; 108 uint64 big 123456"},
    {"single registers only, signed beside a negative one", {"08FD 08F4 0905 0064 1388 0003 FFF6"}, "undecided",
     "100 uint16 230.1; 101 uint16 229.2; 102 uint16 230.9; 103 int16 100; 104 uint16 50.0; 105 int16 3; 106 int16 -10"},
    {"small numbers between zeros", {"0000 0000 04D2 0000 0311 0000 0000"}, "undecided", ""},
    {"a SunSpec map", {"5375 6E53 0001 0042 4142 4344 4546"}, "big", ""},
    {"texts", {"504D 352D 3346 0000 0041 0058 0032 0030 0034 0031 0037 0031"}, "undecided",
     "100 text big \"PM5-3F\"; 104 text-masked big \"AX204171\""},
    {"text, low byte first", {"6566 6465 7265 3420 0000"}, "undecided", "100 text-swapped big \"feeder 4\""},
    {"a clock, packed", {"1A03 0E09 1A30", "1A03 0E09 1A3A"}, "undecided", "100 datetime-bytes-ymdhms big \"2026-03-14T09:26:48\""},
    {"a clock, in registers", {"07EA 0003 000E 0009 001A 0030"}, "undecided", "100 datetime-fields-ymdhms big \"2026-03-14T09:26:48\""},
    {"a clock, seconds last", {"0030 001A 0009 000E 0003 001A"}, "undecided", "100 datetime-fields-smhdmy big \"2026-03-14T09:26:48\""},
    {"a clock, decimal digits", {"2603 1409 2648"}, "undecided", "100 datetime-bytes-ymdhms big \"2026-03-14T09:26:48\""},
    {"a clock, seconds since 1970, low word first", {"2BDD 69B5", "2BE7 69B5"}, "little", "100 datetime-unix32 little \"2026-03-14T09:35:25\""},
};
// clang-format on

TEST(Guess, OrderAndValues) {
    for (const auto& [name, snapshots, order, values] : ROWS) {
        SCOPED_TRACE(std::string(name) + ": " + snapshots.front());
        const Guess guess = Guess::Of(CaptureOf(snapshots));
        EXPECT_EQ(OrderText(guess), order);
        if (*values != '\0') {
            EXPECT_EQ(TextOf(guess), values);
        }
    }
}

TEST(Guess, WhatTheDisplayShowsSettlesTypeOrderAndScale) {
    const Capture capture = CaptureOf({"8990 0003 0311 0000 0000 0000 FC18"});
    const Guess guess = Guess::Of(capture, {Expectation::Parse("100=2318.24"), Expectation::Parse("0x66=7.85"),
                                            Expectation::Parse("106=-100.0")});
    EXPECT_EQ(OrderText(guess), "little");
    EXPECT_EQ(TextOf(guess),
              "100 uint32 little 2318.24; 102 uint32 little 7.85; 104 int16 0; 105 int16 0; 106 int16 -100.0");
    EXPECT_EQ(guess.evidence.back(), "register 106 can show -100");
    EXPECT_EQ(Guess::Of(capture, {Expectation::Parse("104=17")}).evidence.back(),
              "register 104 shows 17 in no type, order and scale");
}

TEST(Guess, ExpectationsThatCannotBeAreRefused) {
    const Capture capture = CaptureOf({"0001 0002"});
    EXPECT_THROW(Guess::Of(capture, {{99, 1, 0}}), std::invalid_argument);
    EXPECT_THROW(Guess::Of(capture, {{100, 1, 0}, {100, 2, 0}}), std::invalid_argument);
    for (const char* text : {"", "=", "6", "6=", "=1", "65536=1", "-1=1", "6=1V", "6=nan", "6=inf", "6= 1", "0x=1"}) {
        EXPECT_THROW(Expectation::Parse(text), std::invalid_argument) << text;
    }
    const Expectation expectation = Expectation::Parse("0x1F=-2.50");
    EXPECT_EQ(expectation.address, 31);
    EXPECT_EQ(expectation.value, -2.5);
    EXPECT_DOUBLE_EQ(expectation.tolerance, 0.005);
    EXPECT_DOUBLE_EQ(Expectation::Parse("1=1e-05").tolerance, 0.5e-5);
}

TEST(Guess, EachRegisterHasItsCandidates) {
    const nlohmann::json coils = Guess::Of(CaptureOf({"1 0"}, 1)).ToJson();
    EXPECT_EQ(coils["values"][1]["candidates"][0]["type"], "boolean");
    EXPECT_TRUE(coils["order"].is_null());
    const nlohmann::json texts = Guess::Of(CaptureOf({"504D 352D 3346 4142"})).ToJson();
    EXPECT_EQ(texts["values"].size(), 4U);
    EXPECT_EQ(texts["values"][0]["candidates"][0]["value"], "PM5-3FAB");
    EXPECT_EQ(Guess::Of(Capture{}).ToJson()["values"].size(), 0U);
}

}  // namespace kzm::ModbusGateway::GuessTest
