#pragma once

#include <nlohmann/json.hpp>

#include "DataModel/ComputedAlarmElement.h"

namespace kzm::ModbusDeviceModel::Device {

// The sub-elements of a custom alarm object. Only leaves that are there already are written.
class CustomAlarmObject {
public:
    // `value`: the object's JSON value. Takes all the memory that WriteState and WriteQuality need, so that an
    // evaluation that has changed the previous values is always written.
    explicit CustomAlarmObject(nlohmann::json& value);

    bool HasState() const;
    // Name, description, type and criticality of the alarm.
    void WriteIdentity(const DataModel::ComputedAlarmElement& alarm);
    // "Active" or "Inactive", with the calendar time at which this object was made.
    void WriteState(nlohmann::json&& state);
    void WriteQuality(DeviceCache::_Quality_t quality);

private:
    void Write(const char* element, const char* leaf, nlohmann::json&& value);

    nlohmann::json* mElements;
    nlohmann::json mDateTime;
    nlohmann::json mQuality;
};

}  // namespace kzm::ModbusDeviceModel::Device
