#pragma once

#include <cstdint>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The register addresses of a frame, in the order in which its registers are kept. A range that would pass register
// 65535 ends there; a list ends where its length or its own addresses do.
KZM_GATEWAY_EXPORT std::vector<std::uint16_t> AddressesOf(const ModbusDeviceModel::DeviceProfile::FrameData& frame);

}  // namespace kzm::ModbusGateway
