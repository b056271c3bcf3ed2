// Decodes the register layouts of date and time.
#include <algorithm>
#include <ctime>
#include <nlohmann/json.hpp>
#include <regex>

#include "fuzz/ElementInput.h"

namespace kzm::ModbusFuzz {

namespace {

using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::ElementData;

constexpr std::size_t LAYOUT_SIZE = 8;
constexpr std::uint8_t FIRST_CODE = 44;
constexpr std::uint8_t LAST_CODE = 48;

void RequireDayAndTime(const std::tm& time) {
    Require(time.tm_mon >= 0 && time.tm_mon <= 14 && time.tm_mday >= 1 && time.tm_mday <= 31, "month and day fit");
    Require(time.tm_hour >= 0 && time.tm_hour <= 31 && time.tm_min >= 0 && time.tm_min <= 63, "hour and minute fit");
    Require(time.tm_sec >= 0 && time.tm_sec <= 255, "the second fits");
}

void DecodeAlone(const char* bytes) {
    std::tm time{};
    ElementData::DecodeDateTimeIEC870(time, bytes);
    RequireDayAndTime(time);
    ElementData::DecodeDateTime3REGSV1ToIEC870(time, bytes);
    RequireDayAndTime(time);
    ElementData::DecodeDateTimeMSPToIEC870(time, bytes);
    RequireDayAndTime(time);
    Require(time.tm_year >= 50 && time.tm_year < 150, "a year of two digits is within 1950 to 2049");
    unsigned short milliseconds = 0;
    ElementData::DecodeDateTimeCMToIEC870(time, milliseconds, bytes);
    RequireDayAndTime(time);
    std::timespec instant{};
    ElementData::DecodeDateTimeULPToIEC870(instant, bytes);
    Require(instant.tv_nsec >= 0 && instant.tv_nsec < 1024'000'000, "nanoseconds are milliseconds of ten bits");
}

void DecodeInElement(std::uint8_t code, Bytes bytes) {
    ElementData element(100, 4, std::make_shared<Bytes>(bytes.size(), std::uint8_t{0xFF}), 1, nullptr,
                        LogicCodeIdentifier{code}, 0, "path", 0, nullptr,
                        ModbusDeviceModel::ByteOrderingEnum::BIG_ENDIAN_WORDS, /*validityCheckEnabled=*/false);
    bool invalid = false;
    nlohmann::json value;
    const bool built = element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), /*deviceBigEndian=*/true, 2000,
                                     invalid, value, nullptr);
    Require(built == !bytes.empty(), "any bytes are a date");
    static const std::regex SHAPE(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d{2,3}\.\d{1,5}\+00:00)");
    Require(!built || (value.is_string() && std::regex_match(value.get<std::string>(), SHAPE)),
            "a date has a date's shape");
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const auto code = input.ConsumeIntegralInRange(FIRST_CODE, LAST_CODE);
    Bytes bytes = input.UpToBytes(2 * LAYOUT_SIZE);
    DecodeInElement(code, bytes);
    bytes.resize(LAYOUT_SIZE);
    bytes.shrink_to_fit();
    const std::vector<char> layout(bytes.begin(), bytes.end());
    DecodeAlone(layout.data());
    return 0;
}
