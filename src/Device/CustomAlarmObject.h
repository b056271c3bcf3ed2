#pragma once

#include <nlohmann/json.hpp>

#include "DataModel/ComputedAlarmElement.h"

namespace kzm::ModbusDeviceModel::Device {

// The sub-elements of a custom alarm object. Only leaves that exist are written.
class CustomAlarmObject {
public:
    // `value`: the object's JSON value. Allocates what WriteState and WriteQuality need, so that the outcome of an
    // evaluation, which has changed the previous values, is written even if memory has run out since.
    explicit CustomAlarmObject(nlohmann::json& value);

    bool HasState() const;
    // Name, description, type and criticality of the alarm.
    void WriteIdentity(const DataModel::ComputedAlarmElement& alarm);
    // "Active" or "Inactive", with the current calendar time. If there is no memory for that text, with the calendar
    // time at which this object was made.
    void WriteState(nlohmann::json&& state);
    void WriteQuality(DeviceCache::_Quality_t quality);

private:
    void UpdateDateTime();
    void Write(const char* element, const char* leaf, nlohmann::json&& value);

    nlohmann::json* mElements;
    std::uint64_t mMadeAt;
    nlohmann::json mDateTime;
    nlohmann::json mQuality;
};

}  // namespace kzm::ModbusDeviceModel::Device
