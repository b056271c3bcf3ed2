#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "dictionary/StructureTemplate.h"

// What the structure templates consist of. The templates are built from these rows, and the dictionary's rows are
// checked against them at compile time.
namespace kz::orba::VortaExtensionModbus::Device::Structures {

inline constexpr std::string_view OUTER_MEMBER = "IoTElementDynamicClassForDevice";
inline constexpr std::string_view READ_ONLY = "Ro";
inline constexpr std::string_view READ_WRITE = "Rw";

struct ValueTemplate {
    StructureTemplate structure;
    std::string_view mode;
    std::string_view members;  // besides "_id", "name", "value" and "mode"
};

struct AlarmTemplate {
    StructureTemplate structure;
    std::string_view criticality;
    std::string_view type;
    unsigned groups;  // of sub-elements, besides those of EVERY alarm
};

// Which alarms a sub-element belongs to.
enum Group : unsigned { EVERY = 0, HANDLING = 1, PHASES = 2, THRESHOLD = 4 };

struct SubElement {
    Group group;
    std::string_view key;
    std::string_view name;
    std::string_view members;  // besides "name", "value" and "mode"
};

// One row per template, in the order of StructureTemplate: first those of values, then those of alarms.
// clang-format off
inline constexpr ValueTemplate VALUES[] = {
    {StructureTemplate::MEASUREMENT,       READ_ONLY,  "datetime quality unit"},
    {StructureTemplate::TIMESTAMPED_VALUE, READ_ONLY,  "datetime quality"},
    {StructureTemplate::ENUMERATED_VALUE,  READ_WRITE, "locked enum quality"},
    {StructureTemplate::PLAIN_VALUE,       READ_ONLY,  "quality"},
    {StructureTemplate::STEPPED_VALUE,     READ_WRITE, "locked min max step quality"},
    {StructureTemplate::UNIT_VALUE,        READ_ONLY,  "unit quality"},
};

inline constexpr AlarmTemplate ALARMS[] = {
    {StructureTemplate::HIGH_PROTECTION_PHASES_THRESHOLD, "High",   "Protection",  PHASES | THRESHOLD},
    {StructureTemplate::MEDIUM_HEALTH_HANDLED,            "Medium", "AssetHealth", HANDLING},
    {StructureTemplate::HIGH_PROTECTION_PHASES,           "High",   "Protection",  PHASES},
    {StructureTemplate::HIGH_PROTECTION,                  "High",   "Protection",  EVERY},
    {StructureTemplate::LOW_PROTECTION,                   "Low",    "Protection",  EVERY},
    {StructureTemplate::HIGH_HEALTH,                      "High",   "AssetHealth", EVERY},
    {StructureTemplate::MEDIUM_HEALTH,                    "Medium", "AssetHealth", EVERY},
    {StructureTemplate::LOW_HEALTH,                       "Low",    "AssetHealth", EVERY},
    {StructureTemplate::MEDIUM_PROTECTION,                "Medium", "Protection",  EVERY},
    {StructureTemplate::HIGH_PROTECTION_HANDLED,          "High",   "Protection",  HANDLING},
    {StructureTemplate::LOW_HEALTH_HANDLED,               "Low",    "AssetHealth", HANDLING},
    {StructureTemplate::HIGH_HEALTH_HANDLED,              "High",   "AssetHealth", HANDLING},
    {StructureTemplate::LOW_PROTECTION_HANDLED,           "Low",    "Protection",  HANDLING},
};

inline constexpr SubElement SUB_ELEMENTS[] = {
    {EVERY,     "state",                          "Alarm.ActiveState",                                  "datetime quality"},
    {EVERY,     "criticality",                    "Alarm.Criticality",                                  ""},
    {EVERY,     "type",                           "Alarm.Type",                                         ""},
    {HANDLING,  "acknowledgment_state",           "Alarm.AcknowledgmentState",                          "datetime"},
    {HANDLING,  "shelve_state",                   "Alarm.ShelveState",                                  "datetime"},
    {HANDLING,  "detection_state",                "Alarm.DetectionState",                               "datetime"},
    {HANDLING,  "confirmation_state",             "Alarm.ConfirmationState",                            "datetime"},
    {PHASES,    "snapshot_rms_current_phs_a",     "ElectricalMeasurement.SnapshotRmsCurrentPhsA",       "datetime quality unit"},
    {PHASES,    "snapshot_rms_current_phs_b",     "ElectricalMeasurement.SnapshotRmsCurrentPhsB",       "datetime quality unit"},
    {PHASES,    "snapshot_rms_current_phs_c",     "ElectricalMeasurement.SnapshotRmsCurrentPhsC",       "datetime quality unit"},
    {THRESHOLD, "snapshot_overcurrent_threshold", "ElectricalMeasurement.SnapshotOverCurrentThreshold", "datetime quality unit"},
};
// clang-format on

// Removes the text up to the first separator, and the separator, from the front and returns it; all of the text if it
// has no separator.
constexpr std::string_view TakePart(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return part;
}

// The row of a template among all rows; COUNT and above for a number that is not a template.
constexpr std::size_t RowOf(StructureTemplate structure) {
    return static_cast<std::size_t>(structure);
}

inline constexpr std::size_t COUNT = std::size(VALUES) + std::size(ALARMS);

constexpr bool RowsAreInOrder() {
    for (std::size_t row = 0; row < COUNT; ++row) {
        const bool isValue = row < std::size(VALUES);
        if (RowOf(isValue ? VALUES[row].structure : ALARMS[row - std::size(VALUES)].structure) != row) {
            return false;
        }
    }
    return true;
}
static_assert(RowsAreInOrder(), "row n must be enumerator n of StructureTemplate");

constexpr bool BelongsTo(const SubElement& element, const AlarmTemplate& alarm) {
    return element.group == EVERY || (alarm.groups & element.group) != 0;
}

constexpr bool HoldsMember(std::string_view members, std::string_view name) {
    while (!members.empty()) {
        if (TakePart(members, ' ') == name) {
            return true;
        }
    }
    return name == "value";
}

// For a path such as "elements.state.quality".
constexpr bool HoldsInElements(const AlarmTemplate& alarm, std::string_view path) {
    constexpr std::string_view ELEMENTS = "elements.";
    if (!path.starts_with(ELEMENTS)) {
        return false;
    }
    path.remove_prefix(ELEMENTS.size());
    const std::string_view key = TakePart(path, '.');
    return std::any_of(std::begin(SUB_ELEMENTS), std::end(SUB_ELEMENTS), [&](const SubElement& element) {
        return element.key == key && BelongsTo(element, alarm) && HoldsMember(element.members, path);
    });
}

// Whether objects of the structure have that attribute, e.g. "value" or "elements.state.quality".
constexpr bool Holds(StructureTemplate structure, std::string_view path) {
    const std::size_t row = RowOf(structure);
    return row < std::size(VALUES) ? HoldsMember(VALUES[row].members, path)
                                   : HoldsInElements(ALARMS[row - std::size(VALUES)], path);
}

}  // namespace kz::orba::VortaExtensionModbus::Device::Structures
