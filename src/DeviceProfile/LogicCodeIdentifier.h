#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel {

// How the raw registers of an element become a value. DeviceProfile/LogicCodeTable.h gives the properties of every code
// that has a meaning; docs/profile.md explains them to authors of device profiles.
enum class LogicCodeIdentifier : std::uint8_t {};

}  // namespace kzm::ModbusDeviceModel
