#include "gateway/capture/Capture.h"

#include <gtest/gtest.h>

#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusGateway::CaptureTest {

using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceCache::QUALITY_BAD;

constexpr std::uint64_t TIME = 1773480413589;  // 2026-03-14T09:26:53.589Z

const std::string CAPTURE = R"({"model": "M", // comment
"snapshots": [
{"time": "2026-03-14T09:26:53.589Z", "frames": [
{"frame": "main", "registers": ["0001 0A0b", " FFFF"]},
{"frame": "bits", "time": "2024-02-29T23:59:59.001Z", "quality": "Bad", "registers": ["0001 0000"]}]},
{"time": "2026-03-14T09:26:54.000Z", "frames": []}]})";

class CaptureTest : public testing::Test {
protected:
    const DeviceFrames mDevice{"M",
                               {"main", "bits"},
                               {{ModbusFunctionCode{3}, false, std::int16_t{0}, 3, std::uint16_t{1}},
                                {ModbusFunctionCode{2}, false, std::int16_t{0}, 2, std::uint16_t{1}}}};
    Problems mProblems;

    Capture Parse(const std::string& text) { return Capture::Parse(text, mDevice, mProblems); }
};

TEST_F(CaptureTest, WhatIsTakenFromACacheIsWrittenReadAndRestored) {
    RegisterCache cache(mDevice.frames);
    cache.Update(0, std::vector<std::uint16_t>{0xABCD, 0, 7}, TIME + 5, QUALITY_BAD);
    const Capture::Snapshot taken = Capture::Take(cache, mDevice, TIME);
    EXPECT_EQ(taken.time, TIME + 5);  // never older than what it holds
    ASSERT_EQ(taken.frames.size(), 1U);
    Capture capture{.snapshots = {{0, {}}, taken, taken}};
    const std::string text = capture.Write(mDevice);
    EXPECT_NE(text.find("\"ABCD 0000 0007\""), std::string::npos) << text;

    const Capture read = Parse(text);
    ASSERT_TRUE(mProblems.empty()) << mProblems[0].message;
    EXPECT_EQ(read.Write(mDevice), text);

    capture.missing = {{ModbusFunctionCode{4}, 7, 65529}, {ModbusFunctionCode{3}, 9, 1, true}};
    const std::string probed = capture.Write(mDevice);
    const Capture described = Capture::Parse(probed, mProblems);
    ASSERT_TRUE(mProblems.empty()) << mProblems[0].message;
    EXPECT_EQ(described.Write(described.frames), probed);
}

TEST_F(CaptureTest, ADescriptionOfFramesIsThatOfProfilesAndFitsTheProfileThatIsNamed) {
    const auto definitions = [](std::string_view schema) { return nlohmann::json::parse(schema)["definitions"]; };
    EXPECT_EQ(definitions(Capture::GetSchema())["frame"], definitions(ProfileLoader::GetSchema())["frame"]);
    const std::string main = R"({"name": "main", "function": "holding", "address": 1, "count": 3})";
    const std::string bits = R"({"name": "bits", "function": "discrete inputs", "addresses": [1, 2]})";
    const std::string list = R"({"name": "bits", "function": 1, "addresses": [1, 2]})";
    const std::tuple<std::string, const char*, const char*> rows[] = {
        {main + ",\n" + bits, "", ""},
        {main, "", R"(the device has no frame "bits")"},
        {main + ",\n" + list,
         R"(the frame "bits" is registers 1, 2 (coils) here, but 2 registers from 1 on (discrete inputs) in the profile)",
         ""},
        {R"({"name": "mian", "function": 3, "address": 1, "count": 3})",
         "the profile has no frame \"mian\"; did you mean", "mian"},
        {R"({"name": "main", "function": 3, "address": 1, "count": 126})", "126 are too many", "126 are too many"},
        {R"({"name": "main", "function": 3, "address": 1})", "\"count\" is missing", "\"count\" is missing"},
        {main + ',' + main, "another frame already has", "another frame already has"},
        {"", "a list of 1 to 255", "a list of 1 to 255"},
    };
    for (const auto& [frames, withProfile, alone] : rows) {
        std::string text = CAPTURE;
        text.insert(text.find("\"snapshots\""), "\"frames\": [" + frames + "],\n");
        for (const bool named : {true, false}) {
            Problems problems;
            const Capture read = named ? Capture::Parse(text, mDevice, problems) : Capture::Parse(text, problems);
            const std::string expected = named ? withProfile : alone;
            const std::string told = problems.empty() ? "" : problems[0].message;
            EXPECT_EQ(read.snapshots.empty(), !problems.empty());
            EXPECT_TRUE(expected.empty() == told.empty() && told.find(expected) != std::string::npos) << frames << told;
        }
    }
    EXPECT_TRUE(Capture::Parse(CAPTURE, mProblems).snapshots.empty());
    EXPECT_NE(mProblems.at(0).message.find("the capture does not describe its frames"), std::string::npos);
}

TEST_F(CaptureTest, EachFaultIsToldWithLineAndPointer) {
    const std::tuple<const char*, const char*, std::size_t, const char*, const char*> rows[] = {
        {"\"snapshots\": [", "\"snapshots\": [1, ", 2, "/snapshots/0", "1 is not allowed"},
        {"\"main\"", "\"mian\"", 4, "/snapshots/0/frames/0/frame", "did you mean \"main\"?"},
        {"\"bits\"", "\"main\"", 5, "/snapshots/0/frames/1/frame", "already"},
        {"\" FFFF\"", "\"\"", 4, "/snapshots/0/frames/0/registers", "2 registers here, but the frame has 3"},
        {"0001 0A0b", " 001 0A0b", 4, "/snapshots/0/frames/0/registers/0", "\"001\" is not a register; allowed: four"},
        {"FFFF", "-FFF", 4, "/snapshots/0/frames/0/registers/1", "is not a register"},
        {"0001 0000", "0002 0000", 5, "/snapshots/0/frames/1/registers/0", "0000 and 0001"},
        {"Bad", "bad", 5, "/snapshots/0/frames/1/quality", "\"Good\", \"Bad\", \"Questionable\""},
        {"2024-02-29", "2023-02-29", 5, "/snapshots/0/frames/1/time", "is not a time"},
        {"23:59:59", "24:00:00", 5, "/snapshots/0/frames/1/time", "is not a time"},
        {"23:59:59", "23:59:60", 5, "/snapshots/0/frames/1/time", "is not a time"},
        {"2024-02-29", "1969-12-31", 5, "/snapshots/0/frames/1/time", "from 1970 on"},
        {"59.001Z", "59Z", 5, "/snapshots/0/frames/1/time", "milliseconds"},
        {"59.001Z", "59.+01Z", 5, "/snapshots/0/frames/1/time", "is not a time"},
        {"54.000Z", "53.588Z", 6, "/snapshots/1/time", "sort snapshots by time"},
        {"\"frames\": []", "\"frame\": []", 6, "/snapshots/1", "\"frames\" is missing"},
        {"\"M\"", R"("M", "missing": [{"function": 3, "address": 65535, "count": 2}])", 1, "/missing/0/count",
         " 65536;"},
        {"\"M\"", "\"N", 1, "", "this is not JSON"}};
    for (const auto& [old, replacement, line, pointer, message] : rows) {
        mProblems.clear();
        std::string text = CAPTURE;
        text.replace(text.find(old), std::string(old).size(), replacement);
        EXPECT_TRUE(Parse(text).snapshots.empty()) << replacement;
        ASSERT_FALSE(mProblems.empty()) << replacement;
        EXPECT_EQ(mProblems[0].line, line) << replacement;
        EXPECT_EQ(mProblems[0].pointer, pointer);
        EXPECT_NE(mProblems[0].message.find(message), std::string::npos) << mProblems[0].message;
    }
}

TEST_F(CaptureTest, OfAnotherModelGivesAWarning) {
    const DeviceFrames other{"N", mDevice.names, mDevice.frames};
    EXPECT_FALSE(Capture::Parse(CAPTURE, other, mProblems).snapshots.empty());
    ASSERT_EQ(mProblems.size(), 1U);
    EXPECT_FALSE(HasError(mProblems));
}

}  // namespace kzm::ModbusGateway::CaptureTest
