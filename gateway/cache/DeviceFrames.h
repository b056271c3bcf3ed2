#pragma once

#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"

namespace kzm::ModbusGateway {

// The frames of a device and their names, which is all that is needed to name what a RegisterCache holds.
struct DeviceFrames {
    std::string modelName;                                            // of the device model; may be empty
    std::vector<std::string> names;                                   // one per frame, each once
    std::vector<ModbusDeviceModel::DeviceProfile::FrameData> frames;  // in the order of their indexes
};

}  // namespace kzm::ModbusGateway
