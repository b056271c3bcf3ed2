#include "AlarmReading.h"

#include "ReadElements.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using nlohmann::json;

namespace {

// Keeps the log free of a request that only repeats another.
class Silence {
public:
    Silence() : mLevel(Log::RootLogger::GetInstance().GetLevel()) {
        Log::RootLogger::GetInstance().SetLevel(Log::OrbaLogLevel::NONE);
    }
    ~Silence() { Log::RootLogger::GetInstance().SetLevel(mLevel); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    Log::OrbaLogLevel mLevel;
};

Explanation ExplainSilently(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm, const Cache& cache,
                            const ModbusDeviceModel::DataModel::PreviousMeasurements& previous) {
    const Silence silence;
    return Explain(profile, alarm, {cache}, previous);
}

}  // namespace

std::string AlarmReading::TextOf(const char* element, const char* attribute) const {
    const json& text = value["elements"][element][attribute];
    return text.is_string() ? text.get<std::string>() : "";
}

bool AlarmReading::DiffersFrom(const AlarmReading& other) const {
    return status != other.status || TextOf("state", "value") != other.TextOf("state", "value") ||
           TextOf("state", "quality") != other.TextOf("state", "quality");
}

AlarmReading ReadAlarm(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm, const Cache& cache,
                       const ModbusDeviceModel::DataModel::PreviousMeasurements& previous) {
    // The evaluation stores the previous values that the explanation is to see.
    Explanation explanation = ExplainSilently(profile, alarm, cache, previous);
    kz::orba::VortaORBAObject object("", alarm.name, alarm.alias, alarm.structure);
    const auto status =
        profile.model->GetCustomAlarmVortaObjectValue(cache, /*ignoreCacheAge=*/false, object, previous);
    bool lasting = true;
    profile.model->GetComputedAlarmInstantaneousness({alarm.name, alarm.alias}, lasting);
    AlarmReading reading{&alarm, std::move(explanation), status, std::move(object.GetValue()), !lasting, {}};
    if (reading.TextOf("state", "value").empty()) {
        reading.why = reading.explanation.why.Text();
    }
    return reading;
}

std::string ToJsonLine(const AlarmReading& reading, const std::string& time, bool raw) {
    json line{{"name", reading.alarm->name},
              {"alias", reading.alarm->alias},
              {"status", static_cast<std::int32_t>(reading.status)},
              {"momentary", reading.momentary},
              {"value", reading.value},
              {"time", time}};
    if (!reading.why.empty()) {
        line["why"] = reading.why;
    }
    AddReason(reading.explanation, line);
    if (raw) {
        AddRaw(reading.explanation, line);
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace kzm::ModbusTool
