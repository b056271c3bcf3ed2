#include "benchmarks/BareDecoding.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>

#include "DataModel/PowerFactorLabels.h"

namespace kzm::Benchmark::Bare {

using nlohmann::json;
using namespace ModbusDeviceModel::DataModel;

namespace {

constexpr double FLOAT_END = std::numeric_limits<float>::max();

std::uint16_t Word(const unsigned char* bytes, std::size_t index) {
    return static_cast<std::uint16_t>(bytes[2 * index] << 8 | bytes[2 * index + 1]);
}

std::uint32_t TwoWords(const Element& element, const unsigned char* bytes) {
    const std::uint32_t first = Word(bytes, 0);
    const std::uint32_t second = Word(bytes, 1);
    return element.swapped ? second << 16 | first : first << 16 | second;
}

std::uint64_t FourWords(const Element& element, const unsigned char* bytes) {
    const std::uint64_t first = TwoWords(element, bytes);
    const std::uint64_t second = TwoWords(element, bytes + 4);
    return element.swapped ? second << 32 | first : first << 32 | second;
}

// The registers as one masked number; false, and null stored, where they mean "not available".
template <int WORDS>
bool Read(const Element& element, const unsigned char* bytes, std::uint64_t& number, json& value) {
    if constexpr (WORDS == 1) {
        number = Word(bytes, 0);
    } else {
        number = WORDS == 2 ? TwoWords(element, bytes) : FourWords(element, bytes);
    }
    if (element.pattern && number == *element.pattern) {
        value = nullptr;
        return false;
    }
    number &= element.mask;
    return true;
}

float AsFloat(std::uint64_t number) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(number));
}

double Scaled(const Element& element, double raw) {
    return element.offset + raw * element.scale;
}

void StoreUnsigned(double number, double end, json& value) {
    if (number >= 0 && number <= end) {
        value = static_cast<std::uint64_t>(std::round(number));
    } else {
        value = nullptr;
    }
}

void StoreFloat(double number, json& value) {
    if (std::fabs(number) <= FLOAT_END) {
        value = number;
    } else {
        value = nullptr;
    }
}

void StoreFinite(double number, json& value) {
    if (std::isfinite(number)) {
        value = number;
    } else {
        value = nullptr;
    }
}

void StoreLabel(const Element& element, std::uint32_t number, json& value) {
    for (const auto& [raw, label] : element.labels) {
        if (raw == number) {
            value = label;
            return;
        }
    }
    value = nullptr;
}

// Up to the first NUL.
std::string_view TextIn(const unsigned char* bytes, std::size_t length) {
    const char* text = reinterpret_cast<const char*>(bytes);
    return {text, static_cast<std::size_t>(std::find(text, text + length, '\0') - text)};
}

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char* PutTwo(char* text, int number) {
    *text++ = static_cast<char>('0' + number / 10 % 10);
    *text++ = static_cast<char>('0' + number % 10);
    return text;
}

char* PutText(char* text, std::string_view what) {
    return std::copy(what.begin(), what.end(), text);
}

struct DateTime {
    int year, month, day, hour, minute, second;
};

void StoreDateTime(const DateTime& time, int milliseconds, json& value) {
    char text[40];
    char* end = PutTwo(PutTwo(text, time.year / 100), time.year % 100);
    for (const auto& [separator, number] :
         {std::pair{'-', time.month}, std::pair{'-', time.day}, std::pair{'T', time.hour}, std::pair{':', time.minute},
          std::pair{':', time.second}}) {
        *end++ = separator;
        end = PutTwo(end, number);
    }
    *end++ = '.';
    end = milliseconds < 0 ? PutText(end, "000") : std::to_chars(end, text + sizeof text, milliseconds).ptr;
    value = std::string(text, PutText(end, "+00:00"));
}

DateTime SixBytes(const unsigned char* bytes) {
    return {
        1900 + bytes[2], std::max(1, bytes[0] & 0x0F), std::max(1, bytes[1] & 0x1F), bytes[3] & 0x1F, bytes[4] & 0x3F,
        bytes[5]};
}

}  // namespace

void Uint16(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<1>(element, bytes, raw, value)) {
        StoreUnsigned(Scaled(element, static_cast<std::uint16_t>(raw)), 65535, value);
    }
}

void Uint32(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<2>(element, bytes, raw, value)) {
        StoreUnsigned(Scaled(element, static_cast<std::uint32_t>(raw)), 4294967295, value);
    }
}

void Int32AsFloat(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<2>(element, bytes, raw, value)) {
        StoreFloat(Scaled(element, static_cast<std::int32_t>(raw)), value);
    }
}

void Int64(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<4>(element, bytes, raw, value)) {
        const double number = Scaled(element, static_cast<double>(static_cast<std::int64_t>(raw)));
        if (number >= -0x1p63 && number < 0x1p63) {
            value = static_cast<std::int64_t>(std::round(number));
        } else {
            value = nullptr;
        }
    }
}

void Float32(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<2>(element, bytes, raw, value)) {
        StoreFloat(Scaled(element, AsFloat(raw)), value);
    }
}

void Float64(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<4>(element, bytes, raw, value)) {
        StoreFinite(Scaled(element, std::bit_cast<double>(raw)), value);
    }
}

void Boolean(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<1>(element, bytes, raw, value)) {
        value = raw != 0;
    }
}

void DecimalWords(const Element&, const unsigned char* bytes, std::size_t length, json& value) {
    std::int64_t number = 0;
    for (std::size_t i = length / 2; i-- > 0;) {
        const auto digits = static_cast<std::int16_t>(Word(bytes, i));
        if (digits < -9999 || digits > 9999) {
            value = nullptr;
            return;
        }
        number = number * 10000 + digits;
    }
    value = number;
}

void DecimalText(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<2>(element, bytes, raw, value)) {
        value = std::to_string(raw);
    }
}

void FrequencyClass(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<1>(element, bytes, raw, value)) {
        if (raw == 50 || raw == 60) {
            value = -2;
        } else if (raw == 400) {
            value = -1;
        }
    }
}

void PowerFactor(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<2>(element, bytes, raw, value)) {
        const float factor = AsFloat(raw);
        StoreFinite(factor > 1 ? 2 - factor : factor < -1 ? -2 - factor : factor, value);
    }
}

void Quadrant(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    std::uint64_t raw;
    if (!Read<2>(element, bytes, raw, value)) {
        return;
    }
    const double factor = AsFloat(raw);
    if (factor < -2.0001 || factor > 2.0001) {
        value = nullptr;
    } else if (factor <= -0.9999) {
        value = QUAD_II;
    } else if (factor < -0.0001) {
        value = QUAD_III;
    } else {
        value = factor <= 1.0001 ? QUAD_I : QUAD_IV;
    }
}

void LoadNature(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    std::uint64_t raw;
    if (!Read<2>(element, bytes, raw, value)) {
        return;
    }
    const double magnitude = std::fabs(AsFloat(raw));
    if (!std::isfinite(magnitude)) {
        value = nullptr;
    } else if (std::fabs(magnitude - 1) < 0.001) {
        value = UNITY;
    } else {
        value = magnitude <= 1 ? LAG : LEAD;
    }
}

void ScaledPower(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    const auto raw = static_cast<double>(static_cast<std::uint64_t>(Word(bytes, 0) * element.scale));
    value = element.exponent < 0 ? raw / std::pow(10, -element.exponent) : raw * std::pow(10, element.exponent);
}

// 1.1.3: a digit, a digit and three digits of the number, each filled up to three.
void Version(const Element&, const unsigned char* bytes, std::size_t, json& value) {
    const int number = Word(bytes, 0);
    char text[] = "000.000.000";
    text[2] = static_cast<char>('0' + number / 10000);
    text[6] = static_cast<char>('0' + number / 1000 % 10);
    text[8] = static_cast<char>('0' + number / 100 % 10);
    PutTwo(text + 9, number % 100);
    value = text;
}

void Text(const Element&, const unsigned char* bytes, std::size_t length, json& value) {
    const std::string_view text = TextIn(bytes, length);
    if (IsAscii(text)) {
        value = text;
    } else {
        value = nullptr;
    }
}

void SwappedText(const Element& element, const unsigned char* bytes, std::size_t length, json& value) {
    unsigned char swapped[256];
    for (std::size_t i = 0; i + 1 < length; i += 2) {
        swapped[i] = bytes[i + 1];
        swapped[i + 1] = bytes[i];
    }
    Text(element, swapped, length, value);
}

void Enumeration(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<1>(element, bytes, raw, value)) {
        StoreLabel(element, static_cast<std::uint8_t>(raw), value);
    }
}

void ShiftedEnumeration(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    if (std::uint64_t raw; Read<1>(element, bytes, raw, value)) {
        StoreLabel(element, static_cast<std::uint32_t>(raw >> std::countr_zero(element.mask)), value);
    }
}

void TextEnumeration(const Element& element, const unsigned char* bytes, std::size_t length, json& value) {
    const std::string_view text = TextIn(bytes, length);
    for (const auto& [raw, label] : element.textLabels) {
        if (raw == text) {
            value = label;
            return;
        }
    }
    value = nullptr;
}

void DateIec870(const Element&, const unsigned char* bytes, std::size_t, json& value) {
    StoreDateTime({2000 + bytes[1], std::max(1, bytes[2] & 0x0F), std::max(1, bytes[3] & 0x1F), bytes[4] & 0x1F,
                   bytes[5] & 0x3F, Word(bytes, 3) / 1000},
                  -1, value);
}

void Date3Registers(const Element&, const unsigned char* bytes, std::size_t, json& value) {
    StoreDateTime(SixBytes(bytes), -1, value);
}

void DateUlp(const Element& element, const unsigned char* bytes, std::size_t, json& value) {
    using namespace std::chrono;
    const sys_seconds instant = sys_days(year(2000) / 1 / 1) + seconds(TwoWords(element, bytes));
    const auto day = floor<days>(instant);
    const year_month_day date(day);
    const hh_mm_ss clock(instant - day);
    StoreDateTime({static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                   static_cast<int>(static_cast<unsigned>(date.day())), static_cast<int>(clock.hours().count()),
                   static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count())},
                  Word(bytes, 2) & 0x3FF, value);
}

void DateCm(const Element&, const unsigned char* bytes, std::size_t, json& value) {
    StoreDateTime(SixBytes(bytes), Word(bytes, 3), value);
}

void DateMsp(const Element&, const unsigned char* bytes, std::size_t, json& value) {
    DateTime time = SixBytes(bytes);
    time.year = 1900 + bytes[2] % 100 + (bytes[2] % 100 < 50 ? 100 : 0);
    StoreDateTime(time, -1, value);
}

}  // namespace kzm::Benchmark::Bare
