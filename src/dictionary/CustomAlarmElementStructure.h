#pragma once

#include <nlohmann/json_fwd.hpp>

#include "Export.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The skeleton of an alarm that a user defines: state, criticality, type, and the user's name (at most 50 characters)
// and description (at most 500 characters).
class KZM_MODBUS_EXPORT CustomAlarmElementStructure {
public:
    // A new object under its one member "IoTElementDynamicClassForDevice"; what the device fills is null. Thread-safe.
    static nlohmann::json GetStructure();
};

}  // namespace kz::orba::VortaExtensionModbus::Device
