#pragma once

#include <cstdint>
#include <vector>

#include "DataModel/ServiceSourceMapping.h"
#include "DeviceProfile/FrameData.h"
#include "DeviceProfile/FrameDataValue.h"

namespace kzm::ModbusDeviceModel::Device {

// The elements of a service with the frames of a device model, which must outlive the mapping. May be read by many
// threads at once.
class KZM_MODBUS_EXPORT ServiceMapping {
public:
    // No service: identifier NONE, no elements.
    explicit ServiceMapping(const std::vector<DeviceProfile::FrameData>& modelFrames);
    // The elements of a service; they are shared, also with copies of the mapping.
    ServiceMapping(const DataModel::ServiceSourceMapping& source,
                   const std::vector<DeviceProfile::FrameData>& modelFrames);
    ServiceMapping(const ServiceMapping&) = default;
    ServiceMapping& operator=(const ServiceMapping&) = default;
    virtual ~ServiceMapping();

    // The payload for writing a whole frame, all registers 0: function code WRITE_MULTIPLE_REGISTERS, the frame's first
    // register (the first address of a scattered frame, 0 if it has none) and its length. Throws std::out_of_range for
    // an index past the frames.
    std::shared_ptr<DeviceProfile::FrameDataValue> BuildFrameDataValue(std::uint8_t frameIndex) const;

    // Which service, its elements, and the frames of the model.
    ServiceImpl::ServiceIdentifier serviceIdentifier = ServiceImpl::ServiceIdentifier::NONE;
    std::list<std::shared_ptr<DataModel::ElementData>> elements;
    const std::vector<DeviceProfile::FrameData>* frames;
};

}  // namespace kzm::ModbusDeviceModel::Device
