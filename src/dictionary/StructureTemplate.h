#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

#include "Export.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The skeletons of data-model objects that elements of the dictionary share.
enum class StructureTemplate : std::uint8_t {
    // One value. MEASUREMENT has date-time and unit, the others what their name says.
    MEASUREMENT,
    TIMESTAMPED_VALUE,
    ENUMERATED_VALUE,  // writable, "On" or "Off"
    PLAIN_VALUE,
    STEPPED_VALUE,  // writable number between "min" and "max"
    UNIT_VALUE,

    // Alarms by criticality and by what they guard: the network (protection) or the asset (health). HANDLED ones carry
    // what a person does about them: acknowledgement, shelving, detection and confirmation. The phase snapshots are the
    // currents at the moment of the alarm, the threshold the current that was exceeded.
    HIGH_PROTECTION_PHASES_THRESHOLD,
    MEDIUM_HEALTH_HANDLED,
    HIGH_PROTECTION_PHASES,
    HIGH_PROTECTION,
    LOW_PROTECTION,
    HIGH_HEALTH,
    MEDIUM_HEALTH,
    LOW_HEALTH,
    MEDIUM_PROTECTION,
    HIGH_PROTECTION_HANDLED,
    LOW_HEALTH_HANDLED,
    HIGH_HEALTH_HANDLED,
    LOW_PROTECTION_HANDLED,
};

// The skeleton as a new object, under its one member "IoTElementDynamicClassForDevice"; what the device fills is null.
// Null for a number that is no template. Thread-safe; nothing is kept between calls.
KZM_MODBUS_EXPORT nlohmann::json BuildStructure(StructureTemplate structure);

}  // namespace kz::orba::VortaExtensionModbus::Device
