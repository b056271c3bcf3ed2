#pragma once

#include <nlohmann/json.hpp>

#include "DataModel/ComputedAlarmElement.h"

namespace kzm::ModbusDeviceModel::Device {

// The sub-elements of a custom alarm object. Only leaves that are there already are written.
class CustomAlarmObject {
public:
    // `value`: the object's JSON value.
    explicit CustomAlarmObject(nlohmann::json& value);

    bool HasState() const;
    // Name, description, type and criticality of the alarm.
    void WriteIdentity(const DataModel::ComputedAlarmElement& alarm);
    // "Active" or "Inactive", with the current calendar time.
    void WriteState(nlohmann::json&& state);
    void WriteQuality(DeviceCache::_Quality_t quality);

private:
    void Write(const char* element, const char* leaf, nlohmann::json&& value);

    nlohmann::json* mElements;
};

}  // namespace kzm::ModbusDeviceModel::Device
