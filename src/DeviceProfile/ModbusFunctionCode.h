#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel {

// Function code of a frame, numbered as in the Modbus Application Protocol. Any other number is passed on unchanged.
enum class ModbusFunctionCode : std::uint32_t {
    READ_COILS = 1,
    READ_DISCRETE_INPUTS = 2,
    READ_HOLDING_REGISTERS = 3,
    READ_INPUT_REGISTERS = 4,
    WRITE_MULTIPLE_REGISTERS = 16,
};

}  // namespace kzm::ModbusDeviceModel
