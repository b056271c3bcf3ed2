#include "gateway/diagnosis/CodeLength.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

namespace kzm::ModbusGateway {

namespace {

constexpr double SIGN_BITS = 3.0;     // one value in eight is negative
constexpr double PATTERN_BITS = 6.0;  // "not available"
constexpr double DECIMAL_DIGIT_BITS = 3.3219;

struct BlankBits {
    std::uint16_t word;
    double first;
    double next;  // after the same
};
constexpr BlankBits ZEROS{0x0000, 1.8, 0.8};
constexpr BlankBits ONES{0xFFFF, 6.0, 0.8};

int BitLength(std::uint64_t magnitude) {
    return static_cast<int>(std::bit_width(magnitude));
}

// Whole numbers of a width: small ones are as frequent as large ones up to 2^flat, and rarer above.
struct Magnitudes {
    int flat;
    double bitsAbove;  // per further bit
};
constexpr std::array<Magnitudes, 3> MAGNITUDES{{{13, 1.0}, {22, 0.8}, {30, 0.6}}};  // by form
constexpr Magnitudes DISTANCES_OF_FLOATS{22, 0.4};

const Magnitudes& MagnitudesOf(ValueForm form) {
    return MAGNITUDES[static_cast<std::size_t>(form)];
}

double BitsForMagnitude(std::uint64_t magnitude, const Magnitudes& usual) {
    const int length = std::max(BitLength(magnitude), 1);
    return std::log2(usual.flat + 2.0) + length - 1 + usual.bitsAbove * std::max(length - usual.flat, 0);
}

double BitsForInteger(ValueForm form, std::uint64_t bits) {
    if (IsInvalid(form, bits)) {
        return PATTERN_BITS;
    }
    const int width = 16 * RowOf(form).count;
    const double asUnsigned = BitsForMagnitude(bits, MagnitudesOf(form));
    if ((bits >> (width - 1)) == 0) {
        return asUnsigned;
    }
    const std::uint64_t magnitude = (~bits + 1) & (~std::uint64_t{0} >> (64 - width));
    return EitherOf(asUnsigned, SIGN_BITS + BitsForMagnitude(magnitude, MagnitudesOf(form)));
}

template <typename Float>
int SignificantDigits(Float number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific).ptr;
    return static_cast<int>(
        std::count_if(text.data(), std::find(text.data(), end, 'e'), [](char c) { return c >= '0' && c <= '9'; }));
}

// The fraction of a float: any, or one of few decimal digits, or one with few bits.
template <typename Float>
double BitsForFraction(Float number, std::uint64_t fraction, int width) {
    const double decimal = 3.5 + DECIMAL_DIGIT_BITS * (SignificantDigits(number) - 1);
    const double few = 3.5 + std::log2(width + 1.0) + width - std::min(std::countr_zero(fraction), width);
    const double measured = 0.5 + width;
    // A double is often a single that was widened.
    const double widened = width == 52 && fraction << 35 == 0 ? 2.0 + 23 : measured;
    return EitherOf(EitherOf(decimal, few), EitherOf(measured, widened));
}

template <typename Float>
double BitsForFloat(Float number, std::uint64_t fraction, int width) {
    if (!std::isfinite(number)) {
        const std::uint64_t quiet = std::uint64_t{1} << (width - 1);
        const bool isUsual = fraction == 0 || fraction == quiet || fraction == 2 * quiet - 1;
        return isUsual ? PATTERN_BITS : 20.0 + width;
    }
    const int exponent = number == 0 ? -200 : std::ilogb(number);
    const double outside = std::max({-7 - exponent, exponent - 18, 0});
    const double sign = std::signbit(number) ? SIGN_BITS : 0.2;
    return sign + 4.9 + std::min(0.7 * outside, 30.0) + BitsForFraction(std::fabs(number), fraction, width);
}

// How many floats lie between two.
std::uint64_t FloatsBetween(std::uint64_t from, std::uint64_t to, int width) {
    const std::uint64_t sign = std::uint64_t{1} << (width - 1);
    const std::uint64_t first = from & (sign - 1);
    const std::uint64_t second = to & (sign - 1);
    if (((from ^ to) & sign) != 0) {
        return first + second;
    }
    return std::max(first, second) - std::min(first, second);
}

std::uint64_t DistanceBetween(ValueForm form, std::uint64_t from, std::uint64_t to) {
    const int width = 16 * RowOf(form).count;
    if (IsFloat(form)) {
        return FloatsBetween(from, to, width);
    }
    const std::uint64_t ones = ~std::uint64_t{0} >> (64 - width);
    return std::min((to - from) & ones, (from - to) & ones);
}

}  // namespace

double EitherOf(double first, double second) {
    const double low = std::min(first, second);
    return low - std::log2(1 + std::exp2(low - std::max(first, second)));
}

std::optional<double> BitsForBlank(std::span<const std::uint16_t> registers, std::optional<std::uint16_t> before) {
    const std::uint16_t word = registers.front();
    if ((word != ZEROS.word && word != ONES.word) ||
        !std::ranges::all_of(registers, [&](std::uint16_t other) { return other == word; })) {
        return std::nullopt;
    }
    const BlankBits& blank = word == ZEROS.word ? ZEROS : ONES;
    return (before == word ? blank.next : blank.first) + static_cast<double>(registers.size() - 1) * blank.next;
}

double BitsForNumber(ValueForm form, std::span<const std::uint16_t> registers, WordOrder order,
                     std::optional<std::uint16_t> before) {
    if (const auto blank = BitsForBlank(registers, before)) {
        return *blank;
    }
    const std::uint64_t bits = BitsOf(registers, order);
    if (form == ValueForm::FLOAT32) {
        return BitsForFloat(std::bit_cast<float>(static_cast<std::uint32_t>(bits)), bits & 0x7FFFFF, 23);
    }
    if (form == ValueForm::FLOAT64) {
        return BitsForFloat(std::bit_cast<double>(bits), bits & 0xFFFFFFFFFFFFF, 52);
    }
    return 0.4 + BitsForInteger(form, bits);
}

double BitsForChange(ValueForm form, std::uint64_t from, std::uint64_t to) {
    const std::uint64_t distance = DistanceBetween(form, from, to);
    if (distance == 0) {
        return 0.4;
    }
    return 3.0 + BitsForMagnitude(distance, IsFloat(form) ? DISTANCES_OF_FLOATS : MagnitudesOf(form));
}

}  // namespace kzm::ModbusGateway
