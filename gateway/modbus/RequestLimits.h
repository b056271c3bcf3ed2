#pragma once

#include <cstdint>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The most registers (or bits) that one request of a function code reads, by the Modbus Application Protocol V1.1b3:
// 2000 coils or discrete inputs, 125 registers; 0 for a function code that reads neither.
KZM_GATEWAY_EXPORT std::uint16_t MaxReadCount(ModbusDeviceModel::ModbusFunctionCode functionCode);

// The most registers that one request of function code 16 writes, by the same protocol.
inline constexpr std::uint16_t MAX_WRITE_COUNT = 123;

}  // namespace kzm::ModbusGateway
