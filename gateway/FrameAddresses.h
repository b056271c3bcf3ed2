#pragma once

#include <cstdint>
#include <vector>

#include "DeviceProfile/FrameData.h"

namespace kzm::ModbusGateway {

// The register addresses of a frame, in the order in which its registers are kept. A range that would pass register
// 65535 ends there; a list ends where its length or its own addresses do.
std::vector<std::uint16_t> AddressesOf(const ModbusDeviceModel::DeviceProfile::FrameData& frame);

// The most registers (or bits) that one request of a function code reads, by the Modbus Application Protocol V1.1b3:
// 2000 coils or discrete inputs, 125 registers; 0 for a function code that reads neither.
std::uint16_t MaxReadCount(ModbusDeviceModel::ModbusFunctionCode functionCode);

}  // namespace kzm::ModbusGateway
