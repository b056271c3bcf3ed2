#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DeviceProfile/ModbusFunctionCode.h"

// Registers as many manuals number them: 40001 is the first holding register, whose address on the wire is 0; from
// address 9999 on with six digits, 410000. 1, 10001 and 30001 are the first coil, discrete input and input register.
namespace kzm::ModbusTool {

struct ManualAddress {
    ModbusDeviceModel::ModbusFunctionCode functionCode;
    std::uint16_t address;  // on the wire
};

// nullopt for a text that is no such number of five or six digits.
std::optional<ManualAddress> ParseManualAddress(std::string_view text);

std::string ManualText(ModbusDeviceModel::ModbusFunctionCode functionCode, std::uint16_t address);

}  // namespace kzm::ModbusTool
