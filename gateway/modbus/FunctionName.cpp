#include "gateway/modbus/FunctionName.h"

#include <algorithm>
#include <iterator>

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;

namespace {

// Function code n is entry n - 1.
constexpr std::string_view NAMES[] = {"coils", "discrete inputs", "holding", "input"};

}  // namespace

std::string_view NameOf(ModbusFunctionCode functionCode) {
    const auto number = static_cast<std::size_t>(functionCode);
    return number >= 1 && number <= std::size(NAMES) ? NAMES[number - 1] : std::string_view();
}

std::optional<ModbusFunctionCode> FindReadFunction(std::string_view name) {
    const auto known = std::ranges::find(NAMES, name);
    return known == std::end(NAMES) ? std::nullopt
                                    : std::optional(static_cast<ModbusFunctionCode>(known - std::begin(NAMES) + 1));
}

}  // namespace kzm::ModbusGateway
