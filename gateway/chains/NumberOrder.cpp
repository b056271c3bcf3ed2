#include "gateway/chains/NumberOrder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kzm::ModbusGateway {

using nlohmann::json;

namespace {

using Terms = std::array<double, 6>;

// A 64-bit integer is exactly the sum of two doubles, of 32 bits each.
std::array<double, 2> Split(const json& number) {
    if (number.is_number_float()) {
        return {number.get<double>(), 0};
    }
    const auto low = static_cast<double>(number.get<std::uint64_t>() & 0xFFFFFFFF);
    const auto high = number.is_number_unsigned() ? static_cast<double>(number.get<std::uint64_t>() >> 32)
                                                  : static_cast<double>(number.get<std::int64_t>() >> 32);
    return {high * 0x1p32, low};
}

// The sign of the exact sum. Every addition keeps its rounding error as a part of the sum: the parts have no bits in
// common and grow, so that the last one that is not zero has the sign. Huge terms are scaled, lest their sum overflows;
// that loses less than 2^-1060.
int SignOfSum(Terms terms) {
    const bool huge = std::any_of(terms.begin(), terms.end(), [](double term) { return std::fabs(term) > 0x1p1000; });
    Terms parts{};
    int sign = 0;
    for (std::size_t count = 0; count < terms.size(); ++count) {
        double carry = huge ? terms[count] * 0x1p-10 : terms[count];
        for (std::size_t i = 0; i < count; ++i) {
            const double sum = carry + parts[i];
            const double added = sum - carry;
            parts[i] = (carry - (sum - added)) + (parts[i] - added);
            carry = sum;
        }
        parts[count] = carry;
    }
    for (const double part : parts) {
        if (part != 0) {
            sign = part < 0 ? -1 : 1;
        }
    }
    return sign;
}

}  // namespace

int OrderOf(const json& left, const json& right, const json& deadBand) {
    const auto l = Split(left);
    const auto r = Split(right);
    const auto band = Split(deadBand);
    if (SignOfSum({l[0], l[1], -r[0], -r[1], -band[0], -band[1]}) > 0) {
        return 1;
    }
    return SignOfSum({l[0], l[1], -r[0], -r[1], band[0], band[1]}) < 0 ? -1 : 0;
}

}  // namespace kzm::ModbusGateway
