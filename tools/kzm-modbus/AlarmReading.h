#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// One evaluation of a computed alarm.
struct AlarmReading {
    const ModbusGateway::LoadedProfile::Alarm* alarm;
    ModbusGateway::Explanation explanation;
    kz::orba::StatusCode status;
    nlohmann::json value;  // the whole custom alarm object
    bool momentary;        // it reports a change and holds no state
    std::string why;       // why there is no state; empty if there is one

    // "state", "criticality" or "type" of the object, one of its attributes as text; empty if it is null.
    std::string TextOf(const char* element, const char* attribute) const;

    // Whether there is news for someone who knows the other reading of the alarm; another date-time alone is not.
    bool DiffersFrom(const AlarmReading& other) const;
};

// Evaluates an alarm of a profile. `previous` is kept by the caller from one evaluation to the next.
AlarmReading ReadAlarm(const ModbusGateway::LoadedProfile& profile, const ModbusGateway::LoadedProfile::Alarm& alarm,
                       const Cache& cache, const ModbusDeviceModel::DataModel::PreviousMeasurements& previous);

// The alarm in one line: "name", "alias", "status", "momentary", "value" (the whole object), "time", "why" if there
// is no state, and what AddReason adds. `raw`: with AddRaw.
std::string ToJsonLine(const AlarmReading& reading, const std::string& time, bool raw);

}  // namespace kzm::ModbusTool
