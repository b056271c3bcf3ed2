#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

namespace kzm::ModbusGateway {

// Reads a decimal number: JSON's form, and also a leading "+", leading zeros, and no digit before or after the point.
// A whole number of up to 64 bits without an exponent is a JSON integer, every other number floating point. nullopt
// when the text as a whole is not a finite number.
std::optional<nlohmann::json> ParseDecimal(std::string_view text);

}  // namespace kzm::ModbusGateway
