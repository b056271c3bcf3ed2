#include "AlarmReading.h"

#include "Support/Status.h"
#include "WhyNoValue.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
namespace Status = ModbusDeviceModel::Status;
using nlohmann::json;

namespace {

std::string WhyNoState(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm, const Cache& cache,
                       kz::orba::StatusCode status) {
    if (status == Status::SUCCESS) {
        return "the chain gives no boolean";
    }
    if (status == Status::INVALID_ARGUMENT) {
        return "an operand or the chain is missing, or failed";
    }
    if (status != Status::NOT_AVAILABLE) {
        return kz::orba::ConvertStatusCodeToString(status);
    }
    for (const std::uint8_t frameIndex : alarm.element->GetFrameIndexes()) {
        std::string why = WhyFrameCannotBeUsed(profile, frameIndex, *cache);
        if (!why.empty()) {
            return why;
        }
        if (cache->GetFrame(frameIndex).quality == ModbusDeviceModel::DeviceCache::QUALITY_BAD) {
            return "frame " + profile.frameNames.at(frameIndex) + " has quality Bad";
        }
    }
    return "a measurement is not available or out of range";
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
    kz::orba::VortaORBAObject object("", alarm.name, alarm.alias, alarm.structure);
    const auto status =
        profile.model->GetCustomAlarmVortaObjectValue(cache, /*ignoreCacheAge=*/false, object, previous);
    bool lasting = true;
    profile.model->GetComputedAlarmInstantaneousness({alarm.name, alarm.alias}, lasting);
    AlarmReading reading{&alarm, status, std::move(object.GetValue()), !lasting, {}};
    if (reading.TextOf("state", "value").empty()) {
        reading.why = WhyNoState(profile, alarm, cache, status);
    }
    return reading;
}

std::string ToJsonLine(const AlarmReading& reading, const std::string& time) {
    json line{{"name", reading.alarm->name},
              {"alias", reading.alarm->alias},
              {"status", static_cast<std::int32_t>(reading.status)},
              {"momentary", reading.momentary},
              {"value", reading.value},
              {"time", time}};
    if (!reading.why.empty()) {
        line["why"] = reading.why;
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace kzm::ModbusTool
