#pragma once

#include <cstdint>
#include <vector>

#include "DataModel/ServiceSourceMapping.h"
#include "DeviceProfile/FrameData.h"
#include "DeviceProfile/FrameDataValue.h"

namespace kzm::ModbusDeviceModel::Device {

// A service's elements bound to the frames of a device model, which must outlive the mapping. Read by many threads.
class KZM_MODBUS_EXPORT ServiceMapping {
public:
    // A mapping of no service: identifier NONE, no elements.
    explicit ServiceMapping(const std::vector<DeviceProfile::FrameData>& modelFrames);
    // A mapping of the service's elements, which are shared, also with copies of it.
    ServiceMapping(const DataModel::ServiceSourceMapping& source,
                   const std::vector<DeviceProfile::FrameData>& modelFrames);
    ServiceMapping(const ServiceMapping&) = default;
    ServiceMapping& operator=(const ServiceMapping&) = default;
    virtual ~ServiceMapping();

    // An empty payload for a write of the whole frame: function 16, the frame's first register (for a scattered frame
    // its first address, 0 when it has none) and length, all registers 0. Throws std::out_of_range past the frames.
    std::shared_ptr<DeviceProfile::FrameDataValue> BuildFrameDataValue(std::uint8_t frameIndex) const;

    // Which service, its elements, and the frames of the model.
    ServiceImpl::ServiceIdentifier serviceIdentifier = ServiceImpl::ServiceIdentifier::NONE;
    std::list<std::shared_ptr<DataModel::ElementData>> elements;
    const std::vector<DeviceProfile::FrameData>* frames;
};

}  // namespace kzm::ModbusDeviceModel::Device
