#pragma once

#include "DataModel/ComputedAlarmOperand.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A value that never changes; its quality is Good.
class KZM_MODBUS_EXPORT ConstantComputedAlarmOperand : public ComputedAlarmOperand {
public:
    // `name`: the key in the parameters of the chain.
    ConstantComputedAlarmOperand(std::string name, nlohmann::json value);
    ~ConstantComputedAlarmOperand() override;

    kz::orba::StatusCode GetValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                  bool deviceBigEndian, bool ignoreCacheAge, const PreviousMeasurements& previous,
                                  const std::string& alarmName, DeviceCache::_Quality_t& quality,
                                  nlohmann::json& value) const override;

private:
    nlohmann::json mValue;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
