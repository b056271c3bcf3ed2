#include "Device/CustomAlarmObject.h"

#include <new>
#include <utility>

#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::Device {

using nlohmann::json;

namespace {

constexpr const char* STATE = "state";

json* FindMember(json* parent, const char* key) {
    if (parent == nullptr || !parent->is_object()) {
        return nullptr;
    }
    const auto found = parent->find(key);
    return found == parent->end() ? nullptr : &*found;
}

const char* CriticalityOf(const std::string& priority) {
    if (priority == "HIGH") {
        return "High";
    }
    return priority == "MEDIUM" ? "Medium" : "Low";
}

}  // namespace

CustomAlarmObject::CustomAlarmObject(json& value)
    : mElements(FindMember(&value, "elements")),
      mMadeAt(DateTime::DateTime::GetRealTimeInMilliseconds()),
      mDateTime(DateTime::DateTime::GetCalendarTime()),
      mQuality("") {}

bool CustomAlarmObject::HasState() const {
    return FindMember(mElements, STATE) != nullptr;
}

void CustomAlarmObject::WriteIdentity(const DataModel::ComputedAlarmElement& alarm) {
    Write("customer_alarm_name", "value", alarm.GetName());
    Write("customer_alarm_description", "value", alarm.GetDescription());
    Write("type", "value", alarm.GetType());
    Write("criticality", "value", CriticalityOf(alarm.GetPriority()));
}

void CustomAlarmObject::WriteState(json&& state) {
    Write(STATE, "value", std::move(state));
    UpdateDateTime();
    Write(STATE, "datetime", std::move(mDateTime));
}

// Within the same millisecond the text has not changed.
void CustomAlarmObject::UpdateDateTime() {
    if (DateTime::DateTime::GetRealTimeInMilliseconds() == mMadeAt) {
        return;
    }
    try {
        mDateTime.get_ref<std::string&>() = DateTime::DateTime::GetCalendarTime();
    } catch (const std::bad_alloc&) {
        // The earlier date-time is written.
    }
}

void CustomAlarmObject::WriteQuality(DeviceCache::_Quality_t quality) {
    // Every quality text fits into a string without allocation.
    mQuality.get_ref<std::string&>() = ConvertToString(quality);
    Write(STATE, "quality", std::move(mQuality));
}

void CustomAlarmObject::Write(const char* element, const char* leaf, json&& value) {
    if (json* const place = FindMember(FindMember(mElements, element), leaf)) {
        *place = std::move(value);
    }
}

}  // namespace kzm::ModbusDeviceModel::Device
