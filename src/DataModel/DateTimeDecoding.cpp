#include <algorithm>
#include <charconv>
#include <chrono>
#include <string_view>
#include <utility>

#include "DataModel/DateTimeText.h"
#include "DataModel/ElementData.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

constexpr std::int64_t SECONDS_FROM_1970_TO_2000 = 946684800;

int ByteAt(const char* bytes, int index) {
    return static_cast<unsigned char>(bytes[index]);
}

// A 16-bit field, high byte first.
int FieldAt(const char* bytes, int index) {
    return ByteAt(bytes, index) << 8 | ByteAt(bytes, index + 1);
}

void SetDayAndMonth(std::tm& time, int day, int month) {
    time.tm_mday = (day & 0x1F) == 0 ? 1 : day & 0x1F;
    time.tm_mon = (month & 0x0F) == 0 ? 0 : (month & 0x0F) - 1;
}

void SetHourAndMinute(std::tm& time, int hour, int minute) {
    time.tm_hour = hour & 0x1F;
    time.tm_min = minute & 0x3F;
}

// The layout month, day, year, hour, minute, second, one byte each.
void DecodeSixBytes(std::tm& time, const char* bytes) {
    time = {};
    SetDayAndMonth(time, ByteAt(bytes, 1), ByteAt(bytes, 0));
    time.tm_year = ByteAt(bytes, 2);
    SetHourAndMinute(time, ByteAt(bytes, 3), ByteAt(bytes, 4));
    time.tm_sec = ByteAt(bytes, 5);
}

std::int64_t UlpSeconds(const char* bytes) {
    return std::int64_t{FieldAt(bytes, 0)} * 65536 + FieldAt(bytes, 2) + SECONDS_FROM_1970_TO_2000;
}

int UlpMilliseconds(const char* bytes) {
    return FieldAt(bytes, 4) & 0x3FF;
}

// As gmtime, but in 64 bits: a 32-bit time_t ends in 2038.
std::tm BrokenDown(std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds instant{std::chrono::seconds(seconds)};
    const auto day = floor<days>(instant);
    const year_month_day date{day};
    const hh_mm_ss clock{instant - day};
    std::tm time{};
    time.tm_year = static_cast<int>(date.year()) - 1900;
    time.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    time.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    time.tm_hour = static_cast<int>(clock.hours().count());
    time.tm_min = static_cast<int>(clock.minutes().count());
    time.tm_sec = static_cast<int>(clock.seconds().count());
    return time;
}

// At least two digits; a field out of its range prints as it is.
char* PutField(char* text, int number) {
    if (number < 10) {
        *text++ = '0';
    }
    return std::to_chars(text, text + 12, number).ptr;
}

std::string TextOf(const std::tm& time, std::string_view fraction) {
    char text[64];
    char* end = PutField(text, time.tm_year + 1900);
    const std::pair<char, int> fields[] = {
        {'-', time.tm_mon + 1}, {'-', time.tm_mday}, {'T', time.tm_hour}, {':', time.tm_min}, {':', time.tm_sec}};
    for (const auto& [separator, number] : fields) {
        *end++ = separator;
        end = PutField(end, number);
    }
    *end++ = '.';
    for (const std::string_view rest : {fraction, std::string_view("+00:00")}) {
        end = std::copy(rest.begin(), rest.end(), end);
    }
    return {text, end};
}

std::string TextOf(const std::tm& time, int milliseconds) {
    return TextOf(time, std::to_string(milliseconds));
}

std::string TextOf(void (*decode)(std::tm&, const char*), const char* bytes) {
    std::tm time{};
    decode(time, bytes);
    return TextOf(time, std::string_view("000"));
}

}  // namespace

void ElementData::DecodeDateTimeIEC870(std::tm& time, const char* bytes) {
    time = {};
    time.tm_year = ByteAt(bytes, 1) + 100;
    SetDayAndMonth(time, ByteAt(bytes, 3), ByteAt(bytes, 2));
    SetHourAndMinute(time, ByteAt(bytes, 4), ByteAt(bytes, 5));
    time.tm_sec = FieldAt(bytes, 6) / 1000;
}

void ElementData::DecodeDateTime3REGSV1ToIEC870(std::tm& time, const char* bytes) {
    DecodeSixBytes(time, bytes);
}

void ElementData::DecodeDateTimeMSPToIEC870(std::tm& time, const char* bytes) {
    DecodeSixBytes(time, bytes);
    time.tm_year %= 100;
    if (time.tm_year < 50) {
        time.tm_year += 100;
    }
}

void ElementData::DecodeDateTimeCMToIEC870(std::tm& time, unsigned short& milliseconds, const char* bytes) {
    DecodeSixBytes(time, bytes);
    milliseconds = static_cast<unsigned short>(FieldAt(bytes, 6));
}

void ElementData::DecodeDateTimeULPToIEC870(std::timespec& time, const char* bytes) {
    time.tv_sec = static_cast<std::time_t>(UlpSeconds(bytes));
    time.tv_nsec = UlpMilliseconds(bytes) * 1000000L;
}

std::string TextOfIec870(const char* bytes) {
    return TextOf(ElementData::DecodeDateTimeIEC870, bytes);
}

std::string TextOf3Registers(const char* bytes) {
    return TextOf(ElementData::DecodeDateTime3REGSV1ToIEC870, bytes);
}

std::string TextOfMsp(const char* bytes) {
    return TextOf(ElementData::DecodeDateTimeMSPToIEC870, bytes);
}

std::string TextOfCm(const char* bytes) {
    std::tm time{};
    unsigned short milliseconds = 0;
    ElementData::DecodeDateTimeCMToIEC870(time, milliseconds, bytes);
    return TextOf(time, milliseconds);
}

std::string TextOfUlp(const char* bytes) {
    return TextOf(BrokenDown(UlpSeconds(bytes)), UlpMilliseconds(bytes));
}

}  // namespace kzm::ModbusDeviceModel::DataModel
