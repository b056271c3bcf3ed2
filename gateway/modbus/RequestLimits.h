#pragma once

#include <cstdint>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The most registers (or bits) that one request of a function code reads, by the Modbus Application Protocol V1.1b3:
// 2000 coils or discrete inputs, 125 registers; 0 for a function code that reads neither.
KZM_GATEWAY_EXPORT std::uint16_t MaxReadCount(ModbusDeviceModel::ModbusFunctionCode functionCode);

}  // namespace kzm::ModbusGateway
