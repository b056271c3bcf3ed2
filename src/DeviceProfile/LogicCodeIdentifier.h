#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel {

// How the raw registers of an element become a value. The codes 0 to 62 have a meaning, told row by row in
// DeviceProfile/LogicCodeTable.h and, for authors of device profiles, in docs/profile.md.
enum class LogicCodeIdentifier : std::uint8_t {};

}  // namespace kzm::ModbusDeviceModel
