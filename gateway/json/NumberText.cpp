#include "gateway/json/NumberText.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace kzm::ModbusGateway {

namespace {

constexpr int DIGITS = 15;

}  // namespace

double RoundedTo(double number, NumberPrecision precision) {
    if (precision == NumberPrecision::DOUBLE || !std::isfinite(number)) {
        return number;
    }
    char text[64];
    const bool isFloat = precision == NumberPrecision::FLOAT && std::abs(number) <= std::numeric_limits<float>::max();
    const auto end = isFloat ? std::to_chars(text, std::end(text), static_cast<float>(number))
                             : std::to_chars(text, std::end(text), number, std::chars_format::general, DIGITS);
    double rounded = number;  // stays where rounding up leaves the range of a double
    std::from_chars(text, end.ptr, rounded);
    return rounded;
}

std::string NumberText(double number, NumberPrecision precision) {
    const double rounded = RoundedTo(number, precision);
    const double magnitude = std::abs(rounded);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e12);
    char text[64];
    const auto end =
        std::to_chars(text, std::end(text), rounded, plain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text, end.ptr};
}

}  // namespace kzm::ModbusGateway
