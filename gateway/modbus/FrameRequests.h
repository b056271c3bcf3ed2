#pragma once

#include <cstdint>
#include <vector>

#include "DeviceProfile/FrameData.h"

namespace kzm::ModbusGateway {

// The requests that read one frame: its addresses sorted, and neighbours joined as far as one request may read.
struct FrameRequests {
    explicit FrameRequests(const ModbusDeviceModel::DeviceProfile::FrameData& frame);

    // Registers side by side on the device.
    struct Range {
        std::uint16_t first;
        std::uint16_t count;  // at least 1
    };

    ModbusDeviceModel::ModbusFunctionCode functionCode;
    std::vector<Range> ranges;
    std::vector<std::size_t> places;  // of each of the frame's registers among those of all ranges
};

}  // namespace kzm::ModbusGateway
