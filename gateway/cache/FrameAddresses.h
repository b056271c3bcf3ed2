#pragma once

#include <cstdint>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The register addresses of a frame, in the order in which the register cache keeps its registers. A range ends at
// register 65535 at the latest; a list has at most the frame's length and at most the addresses it holds. Logs nothing;
// may be called by any number of threads.
KZM_GATEWAY_EXPORT std::vector<std::uint16_t> AddressesOf(const ModbusDeviceModel::DeviceProfile::FrameData& frame);

}  // namespace kzm::ModbusGateway
