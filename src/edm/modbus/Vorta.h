#pragma once

#include <string>
#include <string_view>

#include "Export.h"
#include "edm/modbus/StringCleaner.h"
#include "kz/orba/StatusCode.h"

// Names of device elements in the data model. Elements of the dictionary and identification elements are published
// under a name alone. Measurements and alarms that a user defines share one name each and differ by alias; the id of
// their device element is a short id followed by the encoded alias. All of it is thread-safe and logs nothing.
namespace kzm::edm::modbus::Vorta {

// Short ids, and the name that all custom measurements share.
inline constexpr std::string_view FIRMWARE_MODULE_VORTA_SHORT_ID = "250";
inline constexpr std::string_view CUSTOM_MEASUREMENT_VORTA_SHORT_ID = "7b8";
inline constexpr std::string_view CUSTOM_MEASUREMENT_IOT_NAME = "Measurement.CustomMeasurement";

// Whether it is the name that all custom measurements share.
KZM_MODBUS_EXPORT bool IsCustomMeasurementIoTName(std::string_view name);

// Whether the id is that of a custom measurement: begins with the short id.
KZM_MODBUS_EXPORT bool IsCustomMeasurementVortaSuffix(std::string_view id);

// The codecs between alias and element id.
KZM_MODBUS_EXPORT StringCleaner GetCustomMeasurementNameCodec();
KZM_MODBUS_EXPORT StringCleaner GetCustomAlarmNameCodec();

// The name that all custom alarms share.
KZM_MODBUS_EXPORT std::string GetCustomAlarmIotName();

// Name and alias under which the element with that data-model id is published. An unknown id is its own name; only
// custom elements have an alias. SUCCESS, or OUT_OF_RANGE for a custom id without alias. Throws what the platform
// throws for a custom id whose alias cannot be decoded. Name and alias are unchanged after OUT_OF_RANGE and after an
// exception of the platform. `id` may be a view of either of them.
KZM_MODBUS_EXPORT kz::orba::StatusCode GetIoTNameAndAlias(std::string_view id, std::string& iotName,
                                                          std::string& alias);

}  // namespace kzm::edm::modbus::Vorta
