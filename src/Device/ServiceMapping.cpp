#include "Device/ServiceMapping.h"

namespace kzm::ModbusDeviceModel::Device {

using DeviceProfile::FrameData;
using DeviceProfile::FrameDataValue;

namespace {

std::uint16_t FirstRegisterOf(const FrameData& frame) {
    if (frame.mKind != DeviceProfile::FrameKind::ADDRESS_LIST) {
        return frame.mAddress.mAddress;
    }
    return frame.mLength == 0 || frame.mAddress.mAddresses == nullptr ? std::uint16_t{0} : frame.mAddress.mAddresses[0];
}

}  // namespace

ServiceMapping::ServiceMapping(const std::vector<FrameData>& modelFrames) : frames(&modelFrames) {}

ServiceMapping::ServiceMapping(const DataModel::ServiceSourceMapping& source, const std::vector<FrameData>& modelFrames)
    : serviceIdentifier(source.serviceIdentifier), elements(source.elements), frames(&modelFrames) {}

ServiceMapping::~ServiceMapping() = default;

std::shared_ptr<FrameDataValue> ServiceMapping::BuildFrameDataValue(std::uint8_t frameIndex) const {
    const FrameData& frame = frames->at(frameIndex);
    return std::make_shared<FrameDataValue>(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, FirstRegisterOf(frame),
                                            frame.mLength);
}

}  // namespace kzm::ModbusDeviceModel::Device
