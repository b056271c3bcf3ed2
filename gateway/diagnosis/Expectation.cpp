#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "gateway/diagnosis/Guess.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

namespace {

template <typename Number, typename... Form>
std::optional<Number> ParseWhole(std::string_view text, Form... form) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, form...);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<std::uint16_t> ParseAddress(std::string_view text) {
    return text.starts_with("0x") ? ParseWhole<std::uint16_t>(text.substr(2), 16) : ParseWhole<std::uint16_t>(text);
}

// Half a unit of the last digit.
double ToleranceOf(std::string_view text) {
    const std::size_t exponent = std::min(text.find('e'), text.size());
    const std::size_t point = std::min(text.find('.'), exponent - 1);
    const auto decimals = static_cast<int>(exponent - 1 - point);
    return 0.5 *
           std::pow(10.0, ParseWhole<int>(text.substr(std::min(exponent + 1, text.size()))).value_or(0) - decimals);
}

}  // namespace

Expectation Expectation::Parse(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    const auto address = ParseAddress(std::string_view(text).substr(0, equals));
    const std::string_view shown = std::string_view(text).substr(std::min(equals + 1, text.size()));
    const auto value = ParseWhole<double>(shown, std::chars_format::general);
    if (!address || !value || !std::isfinite(*value)) {
        throw std::invalid_argument(Quoted(text) +
                                    " is not ADDRESS=VALUE, a register from 0 to 65535 and a number, e.g. 6=230.4");
    }
    return {*address, *value, ToleranceOf(shown)};
}

}  // namespace kzm::ModbusGateway
