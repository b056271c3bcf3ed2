#pragma once

#include "DataModel/ElementData.h"
#include "gateway/Export.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusGateway {

// How many digits of the number that an element of a type gives mean something: FLOAT for a 32-bit float, scaled or
// not; DOUBLE for a 64-bit float without scale (1) and offset (0), in the unit of the value; DIGITS_15 for any other.
// The second form takes the element's own. Neither logs; any thread.
KZM_GATEWAY_EXPORT NumberPrecision PrecisionOf(ModbusDeviceModel::LogicCodeIdentifier type, double scale, float offset);
KZM_GATEWAY_EXPORT NumberPrecision PrecisionOf(const ModbusDeviceModel::DataModel::ElementData& element);

}  // namespace kzm::ModbusGateway
