#include "gateway/model/NumberParsing.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace kzm::ModbusGateway {

using nlohmann::json;

namespace {

template <typename Number>
std::optional<Number> Parse(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// The text up to its decimal point if only zeros follow.
std::string_view WithoutZeroFraction(std::string_view text) {
    const auto point = text.find('.');
    return text.find_last_not_of('0') == point ? text.substr(0, point) : text;
}

}  // namespace

std::optional<json> ParseDecimal(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    const std::string_view digits = WithoutZeroFraction(text);
    if (const auto whole = Parse<std::uint64_t>(digits)) {
        return *whole;
    }
    const auto negative = Parse<std::int64_t>(digits);
    if (negative && *negative < 0) {
        return *negative;
    }
    const auto number = Parse<double>(text);
    return number && std::isfinite(*number) ? std::optional<json>(*number) : std::nullopt;
}

}  // namespace kzm::ModbusGateway
