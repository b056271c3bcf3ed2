#pragma once

#include <nlohmann/json.hpp>

#include "DataModel/AttributeAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

// An attribute whose value never changes. Does not read the cache and never fails: quality Good, status SUCCESS.
class KZM_MODBUS_EXPORT AttributeConstant : public AttributeAdapter {
public:
    // `value`: what both forms give.
    explicit AttributeConstant(nlohmann::json value);
    ~AttributeConstant() override;

    kz::orba::StatusCode GetIotValue(const std::string& urn,
                                     const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    // Adds nothing.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // NOT_SUPPORTED: a constant has no class of its own.
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // Not meant to be called: logs an error and returns the default record.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    // False.
    bool HasEnumOutput() const override;

private:
    nlohmann::json mValue;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
