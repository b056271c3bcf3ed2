#pragma once

#include <string>

#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

// The date and time in eight bytes of a raw record, in wire order, as text: ISO 8601 in UTC with "+00:00". The fraction
// is
// ".000", or the milliseconds without leading zeros for the layouts that carry them. `layout` is one of the DATE
// families.
std::string DateTimeText(DeviceProfile::Family layout, const char* bytes);

}  // namespace kzm::ModbusDeviceModel::DataModel
