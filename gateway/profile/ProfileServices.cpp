#include "gateway/profile/ProfileServices.h"

#include "DataModel/ServiceSourceMapping.h"
#include "gateway/profile/ObjectIdentity.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DataModel::ServiceSourceMapping;
using ModbusDeviceModel::Device::DeviceModel;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::ServiceImpl::ServiceIdentifier;

ProfileServices::ProfileServices(const JsonCursor& section, ProfileElements& elements, const ProfileFrames& frames)
    : mElements(elements), mFrames(frames) {
    section.ForEach([this](const std::string&, const JsonCursor& place) { ReadService(place); });
}

void ProfileServices::ReadService(const JsonCursor& place) {
    const DeviceModel::Key key(place.At("name").Text(), place.At("alias").Text());
    mNames.push_back(key.first);
    std::list<std::shared_ptr<ElementData>> elements;
    place.At("elements").ForEach([&](const std::string& attribute, const JsonCursor& role) {
        if (auto element = ReadElement(attribute, role)) {
            mTargets.emplace(key, element);
            elements.push_back(std::move(element));
        }
    });
    if (!place.Has("name") || !place.Has("service")) {
        return;  // already reported
    }
    const auto [earlier, isNew] = mPlaces.try_emplace(key, place);
    if (!isNew) {
        place.At("name").Error("a service for the " + DescribeObject(key.first, key.second) +
                               " is already defined on line " + std::to_string(earlier->second.GetLine()));
    }
    const auto service = static_cast<ServiceIdentifier>(place.At("service")->get<std::int32_t>());
    mSources[{key.first, key.second}] = std::make_shared<ServiceSourceMapping>(service, std::move(elements));
    mServices.push_back({key.first, key.second});
}

std::shared_ptr<ElementData> ProfileServices::ReadElement(const std::string& attribute, const JsonCursor& role) {
    const auto registers = mElements.GetRegisters(role);
    if (!registers) {
        return nullptr;
    }
    mFrames.RequireWritable(registers->frame, role);
    if (registers->type->family == Family::SCALED_POWER) {
        role.Error("values of the type " + Quoted(registers->type->name) + " cannot be written");
    }
    return registers->MakeElement(attribute);
}

std::unique_ptr<DeviceModel> ProfileServices::MakeModel(bool bigEndian) const {
    return std::make_unique<DeviceModel>(std::make_shared<DeviceModel::Elements>(mTargets), mFrames.GetFrames(),
                                         std::make_shared<DeviceModel::ServiceSources>(mSources), bigEndian);
}

}  // namespace kzm::ModbusGateway
