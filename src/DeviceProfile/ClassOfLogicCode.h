#pragma once

#include <string>

#include "DeviceProfile/LogicCodeIdentifier.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

// The data-model class of what a logic code decodes. NOT_FOUND, and `className` untouched, for a code without a class.
kz::orba::StatusCode GetClassOfLogicCode(LogicCodeIdentifier logicCode, std::string& className);

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
