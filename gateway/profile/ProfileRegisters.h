#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/AttributeConverter.h"
#include "DataModel/ExtendedElementData.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ProfileEnumerations.h"
#include "gateway/profile/ProfileFrames.h"

namespace kzm::ModbusGateway {

// An element of a device profile: registers of the device, and how they become a value.
struct ProfileRegisters {
    const ModbusDeviceModel::DeviceProfile::LogicCodeRow* type = nullptr;
    std::uint16_t address = 0;
    std::uint8_t count = 0;
    std::uint8_t frame = 0;
    std::shared_ptr<std::vector<std::uint8_t>> mask;
    std::shared_ptr<std::string> notAvailable;  // null: none
    double scale = 1;
    float offset = 0;
    ModbusDeviceModel::ByteOrderingEnum order{};
    ProfileEnumerations::Pairs pairs;

    // nullopt for a faulty element, which is reported.
    static std::optional<ProfileRegisters> Read(const JsonCursor& element, const ProfileFrames& frames,
                                                ProfileEnumerations& enumerations);

    std::shared_ptr<ModbusDeviceModel::DataModel::AttributeConverter> MakeConverter() const;
    std::shared_ptr<ModbusDeviceModel::DataModel::ElementData> MakeElement(const std::string& attributePath) const;
    // With one dependency, the exponent.
    std::shared_ptr<ModbusDeviceModel::DataModel::ExtendedElementData> MakeScaledPower() const;
    Names GetLabels() const;
};

}  // namespace kzm::ModbusGateway
