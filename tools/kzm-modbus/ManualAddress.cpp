#include "ManualAddress.h"

#include <algorithm>
#include <charconv>

namespace kzm::ModbusTool {

using ModbusDeviceModel::ModbusFunctionCode;

namespace {

// The first digit of the numbers of function code n is digit n - 1.
constexpr std::string_view FIRST_DIGITS = "0143";

}  // namespace

std::optional<ManualAddress> ParseManualAddress(std::string_view text) {
    const std::size_t place = text.empty() ? text.npos : FIRST_DIGITS.find(text[0]);
    std::uint32_t number = 0;
    const auto result =
        std::from_chars(text.data() + std::min<std::size_t>(1, text.size()), text.data() + text.size(), number);
    if (place == text.npos || (text.size() != 5 && text.size() != 6) || result.ec != std::errc() ||
        result.ptr != text.data() + text.size() || number < 1 || number > 0x10000) {
        return std::nullopt;
    }
    return ManualAddress{static_cast<ModbusFunctionCode>(place + 1), static_cast<std::uint16_t>(number - 1)};
}

std::string ManualText(ModbusFunctionCode functionCode, std::uint16_t address) {
    const std::string number = std::to_string(address + 1);
    const std::size_t digits = address < 9999 ? 4 : 5;
    return FIRST_DIGITS[static_cast<std::size_t>(functionCode) - 1] + std::string(digits - number.size(), '0') + number;
}

}  // namespace kzm::ModbusTool
