#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "DeviceCache/Quality.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A measurement as it was at an earlier evaluation of a computed alarm.
struct ComputedAlarmPreviousMeasurement {
    nlohmann::json value;                                                  // the measurement
    DeviceCache::_Quality_t quality = DeviceCache::QUALITY_UNINITIALISED;  // its quality
    std::uint64_t timestamp = 0;  // when it was stored: milliseconds since 1970
};

// The previous values that the caller keeps between evaluations. Key: the alarm's name directly followed by the
// operand's previous-value name. Evaluations change the map in place; the caller serialises those that share one map.
using PreviousMeasurements = std::shared_ptr<std::map<std::string, ComputedAlarmPreviousMeasurement>>;

}  // namespace kzm::ModbusDeviceModel::DataModel
