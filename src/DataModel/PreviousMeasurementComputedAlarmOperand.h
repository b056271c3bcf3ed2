#pragma once

#include "DataModel/ComputedAlarmOperand.h"

namespace kzm::ModbusDeviceModel::DataModel {

// The alarm's measurement as it was at an earlier evaluation.
class KZM_MODBUS_EXPORT PreviousMeasurementComputedAlarmOperand : public ComputedAlarmOperand {
public:
    // `name`: the key in the parameters of the chain. `previousValueName`: second part of the record's key, after the
    // alarm's name.
    PreviousMeasurementComputedAlarmOperand(std::string name, std::string previousValueName);
    ~PreviousMeasurementComputedAlarmOperand() override;

    std::optional<std::string> GetPreviousValueName() const override;
    // The record of that key, Bad if it is too old; the record itself is not changed. NOT_AVAILABLE, with the outputs
    // untouched, if there is no map or no such record.
    kz::orba::StatusCode GetValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                  bool deviceBigEndian, bool ignoreCacheAge, const PreviousMeasurements& previous,
                                  const std::string& alarmName, DeviceCache::_Quality_t& quality,
                                  nlohmann::json& value) const override;

    // Makes a record Bad that was stored more than one and a half alarm periods ago. A period is a minute, or how often
    // the platform's alarm engine runs if that is more than a minute, but at most three of these runs.
    void UpdatePreviousValueQuality(ComputedAlarmPreviousMeasurement& record) const;

private:
    std::string mPreviousValueName;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
