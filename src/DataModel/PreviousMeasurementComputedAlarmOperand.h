#pragma once

#include "DataModel/ComputedAlarmOperand.h"

namespace kzm::ModbusDeviceModel::DataModel {

// What the alarm's measurement was at an earlier evaluation.
class KZM_MODBUS_EXPORT PreviousMeasurementComputedAlarmOperand : public ComputedAlarmOperand {
public:
    // `name`: the key in the parameters of the chain. `previousValueName`: follows the alarm's name in the key of the
    // record.
    PreviousMeasurementComputedAlarmOperand(std::string name, std::string previousValueName);
    ~PreviousMeasurementComputedAlarmOperand() override;

    std::optional<std::string> GetPreviousValueName() const override;
    // The record under the alarm's name followed by the previous-value name, aged; the record itself is not changed.
    // 42, and the outputs untouched: there is no map or no such record.
    kz::orba::StatusCode GetValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                  bool deviceBigEndian, bool ignoreCacheAge, const PreviousMeasurements& previous,
                                  const std::string& alarmName, DeviceCache::_Quality_t& quality,
                                  nlohmann::json& value) const override;

    // Makes a record Bad that was stored more than one and a half alarm periods ago; see PreviousValuePeriod.
    void UpdatePreviousValueQuality(ComputedAlarmPreviousMeasurement& record) const;

private:
    std::string mPreviousValueName;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
