#pragma once

#include <memory>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ExtendedElementData.h"

namespace kzm::ModbusGateway {

// An attribute that is decoded as a scaled power (logic codes 34 to 37) whose decimal exponent another attribute of the
// same device gives: a scale factor in a register of its own.
class ScaledPowerAdapter final : public ModbusDeviceModel::DataModel::AttributeAdapter {
public:
    using Cache = std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>;
    using Quality = ModbusDeviceModel::DeviceCache::_Quality_t;

    // `element`: with a dependency, of any name. Neither may be null.
    ScaledPowerAdapter(std::shared_ptr<ModbusDeviceModel::DataModel::ExtendedElementData> element,
                       std::shared_ptr<AttributeAdapter> exponent);

    // As AttributeConverter::GetValueFromElementData. Once the element has a value, also the status of an exponent that
    // could not be read, and OUT_OF_RANGE for one that is not a whole number from -MAX_EXPONENT to MAX_EXPONENT.
    // `quality` is the worse of the two that were read.
    kz::orba::StatusCode GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                     bool ignoreCacheAge, Quality& quality, nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge, Quality& quality,
                                     nlohmann::json& value) override;
    // Adds the frames of the element and of the exponent; the exponent's failure is returned.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // The element's.
    ModbusDeviceModel::Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    bool HasEnumOutput() const override { return false; }

private:
    std::shared_ptr<ModbusDeviceModel::DataModel::ExtendedElementData> mElement;
    std::shared_ptr<AttributeAdapter> mExponent;
};

}  // namespace kzm::ModbusGateway
