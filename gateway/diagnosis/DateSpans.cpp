#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>

#include "gateway/diagnosis/CodeLength.h"
#include "gateway/diagnosis/DateLayouts.h"
#include "gateway/diagnosis/ValueSpan.h"

namespace kzm::ModbusGateway {

namespace {

using Seconds = std::int64_t;

constexpr Seconds EARLIEST = 1262304000;  // 2010
constexpr Seconds LATEST = 2208988800;    // 2040
constexpr Seconds DAY = 86400;
constexpr double LAYOUT_BITS = 5.0;  // which layout

// A byte of a date, by what it is.
struct DateField {
    char letter;
    int low;
    int high;
};
// clang-format off
constexpr std::array DATE_FIELDS{
    DateField{'y', 0, 255}, DateField{'n', 100, 149}, DateField{'M', 1, 12}, DateField{'d', 1, 31}, DateField{'h', 0, 23},
    DateField{'m', 0, 59},  DateField{'s', 0, 59},    DateField{'W', 0, 7},  DateField{'0', 0, 0},  DateField{'x', 0, 255},
    DateField{'Y', 0, 255}, DateField{'T', 0, 3},     DateField{'t', 0, 255}, DateField{'U', 0, 234}, DateField{'u', 0, 255},
    DateField{'2', 0, 255},
};
// clang-format on

int FromBcd(int byte) {
    return byte % 16 > 9 || byte / 16 > 9 ? -1 : byte / 16 * 10 + byte % 16;
}

class FieldReader {
public:
    FieldReader(const DateLayout& layout, std::span<const std::uint16_t> registers)
        : mLayout(layout), mRegisters(registers) {}

    // Seconds since 1970 by the device's own clock; nullopt if a field is out of range.
    std::optional<Seconds> Read() {
        for (std::size_t i = 0; i < mLayout.bytes.size(); ++i) {
            if (!Take(mLayout.bytes[i], ByteAt(i))) {
                return std::nullopt;
            }
        }
        const std::chrono::year_month_day date{std::chrono::year(mYear), std::chrono::month(mMonth),
                                               std::chrono::day(mDay)};
        if (!date.ok()) {
            return std::nullopt;
        }
        return std::chrono::sys_seconds(std::chrono::sys_days(date)).time_since_epoch().count() + mSecondOfDay +
               mSecondsSince2000;
    }

private:
    int ByteAt(std::size_t i) const {
        const int byte = i % 2 == 0 ? mRegisters[i / 2] >> 8 : mRegisters[i / 2] & 0xFF;
        return mLayout.isBcd ? FromBcd(byte) : byte;
    }
    bool Take(char letter, int number) {
        const auto field =
            std::ranges::find_if(DATE_FIELDS, [&](const DateField& known) { return known.letter == letter; });
        Keep(letter, number);
        return number >= field->low && number <= field->high;
    }
    void Keep(char letter, int number) {
        switch (letter) {
            case 'Y':
                mYearsBefore = number * (mLayout.isBcd ? 100 : 256);
                break;
            case 'y':
                mYear = mYearsBefore + number;
                break;
            case 'n':
                mYear = 1900 + number;
                break;
            case 'M':
                mMonth = static_cast<unsigned>(number);
                break;
            case 'd':
                mDay = static_cast<unsigned>(number);
                break;
            case 'h':
                mSecondOfDay += 3600 * number;
                break;
            case 'm':
                mSecondOfDay += 60 * number;
                break;
            case 's':
                mSecondOfDay += number;
                break;
            case '2':
                mSecondsSince2000 = mSecondsSince2000 * 256 + number;
                break;
            default:
                break;
        }
    }

    const DateLayout& mLayout;
    std::span<const std::uint16_t> mRegisters;
    int mYearsBefore = 2000;  // of the byte

    int mYear = 2000;
    unsigned mMonth = 1;
    unsigned mDay = 1;
    Seconds mSecondOfDay = 0;
    Seconds mSecondsSince2000 = 0;
};

std::optional<Seconds> ReadUnix(ValueForm form, std::span<const std::uint16_t> registers, WordOrder order) {
    const std::uint64_t bits = BitsOf(registers, order);
    const std::uint64_t seconds = form == ValueForm::UNIX64_MS ? bits / 1000 : bits;
    return seconds > LATEST ? std::nullopt : std::optional(static_cast<Seconds>(seconds));
}

// A date between 2010 and 2040, most probably near the time at which it was read: a clock.
double BitsForDate(Seconds date, Seconds read, double resolution) {
    const double any = std::log2(static_cast<double>(LATEST - EARLIEST) / resolution) + 0.5;
    const auto distance = static_cast<double>(std::abs(date - read));
    if (distance > 400.0 * DAY) {
        return any;
    }
    return EitherOf(any, 2.0 + std::log2((distance + 60) / resolution) + std::log2(12.0));
}

// The bits of a date at all snapshots: a clock goes on, other dates stay.
template <typename Reading>
std::optional<double> BitsForDates(const RegisterWindow& window, std::size_t count, double resolution, Reading read) {
    std::optional<Seconds> before;
    double bits = 0;
    for (std::size_t i = 0; i < window.GetSnapshots(); ++i) {
        const std::optional<Seconds> date = read(i);
        if (!date || *date < EARLIEST || *date > LATEST) {
            return std::nullopt;
        }
        const auto time = static_cast<Seconds>(window.all.times[i] / 1000);
        if (!before) {
            bits += BitsForDate(*date, time, resolution);
        } else {
            const auto late = *date - *before - (time - static_cast<Seconds>(window.all.times[i - 1] / 1000));
            const double moved = 1.5 + 2 * std::log2(1.0 + static_cast<double>(std::abs(late)));
            const bool stays = std::ranges::equal(window.At(i - 1, count), window.At(i, count));
            bits += stays ? std::min(0.5, moved) : moved - std::min(std::log2(resolution), 0.0);
        }
        before = date;
    }
    return bits;
}

double ResolutionOf(const DateLayout& layout) {
    if (layout.bytes.find_first_of("sU2") != std::string_view::npos) {
        return 1;
    }
    return layout.bytes.find('m') != std::string_view::npos ? 60 : DAY;
}

// The bits of a byte that the date leaves open, and those by which any number may be taken for seconds.
double BitsForFreeByte(char letter) {
    switch (letter) {
        case 'x':
        case 'u':
        case 't':
            return 6;
        case '2':
            return 2;
        default:
            return 0;
    }
}

void AddFieldSpan(const RegisterWindow& window, std::size_t layout, ValueSpans& spans) {
    const DateLayout& row = DATE_LAYOUTS[layout];
    const std::size_t count = row.bytes.size() / 2;
    if (window.GetRest() < count) {
        return;
    }
    const auto bits = BitsForDates(window, count, ResolutionOf(row), [&](std::size_t snapshot) {
        return FieldReader(row, window.At(snapshot, count)).Read();
    });
    if (bits) {
        double doubt = LAYOUT_BITS;
        for (const char letter : row.bytes) {
            doubt += BitsForFreeByte(letter);
        }
        spans.push_back({ValueForm::DATE, static_cast<std::uint8_t>(layout), static_cast<std::uint16_t>(window.first),
                         static_cast<std::uint16_t>(count), doubt + *bits});
    }
}

void AddUnixSpan(const RegisterWindow& window, ValueForm form, WordOrder order, ValueSpans& spans) {
    const std::size_t count = RowOf(form).count;
    if (window.GetRest() < count || order == WordOrder::NONE) {
        return;
    }
    const double resolution = form == ValueForm::UNIX64_MS ? 0.001 : 1;
    const auto bits = BitsForDates(window, count, resolution, [&](std::size_t snapshot) {
        return ReadUnix(form, window.At(snapshot, count), order);
    });
    if (bits) {
        const double doubt = form == ValueForm::UNIX32 ? 4 : 6;
        spans.push_back(
            {form, 0, static_cast<std::uint16_t>(window.first), static_cast<std::uint16_t>(count), *bits + doubt});
    }
}

// Seconds since 1970 of what a span holds at a snapshot.
std::optional<Seconds> ReadDate(const ValueSpan& span, std::span<const std::uint16_t> registers, WordOrder order) {
    return span.form == ValueForm::DATE ? FieldReader(DATE_LAYOUTS[span.layout], registers).Read()
                                        : ReadUnix(span.form, registers, order);
}

}  // namespace

std::string DateTextOf(const ValueSpan& span, const RegisterRun& run, WordOrder order) {
    const auto seconds = ReadDate(span, run.At(0, span.first, span.count), order);
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds.value_or(0))};
    const std::chrono::year_month_day date{std::chrono::floor<std::chrono::days>(time)};
    const std::chrono::hh_mm_ss clock{time - std::chrono::floor<std::chrono::days>(time)};
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}

void AddDateSpans(const RegisterWindow& window, WordOrder order, ValueSpans& spans) {
    for (const ValueForm form : {ValueForm::UNIX32, ValueForm::UNIX64, ValueForm::UNIX64_MS}) {
        AddUnixSpan(window, form, order, spans);
    }
    for (std::size_t layout = 0; layout < DATE_LAYOUTS.size(); ++layout) {
        AddFieldSpan(window, layout, spans);
    }
}

}  // namespace kzm::ModbusGateway
