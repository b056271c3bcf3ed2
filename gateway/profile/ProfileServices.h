#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Device/DeviceModel.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/LoadedProfile.h"
#include "gateway/profile/ProfileElements.h"

namespace kzm::ModbusGateway {

// The section "services" of a device profile.
class ProfileServices {
public:
    // Reads the section and reports what is wrong with it. The other sections must outlive this one.
    ProfileServices(const JsonCursor& section, ProfileElements& elements, const ProfileFrames& frames);

    // Valid if no error was reported. In the order of the profile.
    const std::vector<LoadedProfile::Service>& GetServices() const { return mServices; }
    // Of the services' objects, including faulty ones.
    const Names& GetNames() const { return mNames; }
    // The model that finds the services' elements.
    std::unique_ptr<ModbusDeviceModel::Device::DeviceModel> MakeModel(bool bigEndian) const;

private:
    using DeviceModel = ModbusDeviceModel::Device::DeviceModel;

    void ReadService(const JsonCursor& place);
    std::shared_ptr<ModbusDeviceModel::DataModel::ElementData> ReadElement(const std::string& attribute,
                                                                           const JsonCursor& role);

    ProfileElements& mElements;
    const ProfileFrames& mFrames;
    std::vector<LoadedProfile::Service> mServices;
    Names mNames;
    std::map<DeviceModel::Key, JsonCursor> mPlaces;
    DeviceModel::Elements mTargets;
    DeviceModel::ServiceSources mSources;
};

}  // namespace kzm::ModbusGateway
