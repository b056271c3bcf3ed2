#pragma once

#include <nlohmann/json.hpp>

#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A number as JSON of an output type: integers rounded half away from zero, floating point unchanged. Null for a number
// that is not finite or not in the range of the type; the range is tested before rounding.
nlohmann::json Emit(DeviceProfile::Output output, double number);

// Floating point without a range of its own; null for what is not finite.
nlohmann::json EmitFinite(double number);

}  // namespace kzm::ModbusDeviceModel::DataModel
