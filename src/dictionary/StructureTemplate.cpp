#include "dictionary/StructureTemplate.h"

#include <nlohmann/json.hpp>

#include "dictionary/StructureTable.h"

namespace kz::orba::VortaExtensionModbus::Device {

namespace {

using nlohmann::json;

// What a member holds until the device fills it. Snapshots are currents, so their unit is fixed.
json InitialValue(std::string_view member, std::string_view unit) {
    if (member == "unit") {
        return unit;
    }
    if (member == "locked") {
        return false;
    }
    if (member == "enum") {
        return json::array({"On", "Off"});
    }
    return nullptr;
}

void AddMembers(json& skeleton, std::string_view members, std::string_view unit) {
    while (!members.empty()) {
        const std::string_view member = Structures::TakePart(members, ' ');
        skeleton[std::string(member)] = InitialValue(member, unit);
    }
}

json ValueSkeleton(const Structures::ValueTemplate& row) {
    json skeleton{{"_id", nullptr}, {"name", nullptr}, {"value", nullptr}, {"mode", row.mode}};
    AddMembers(skeleton, row.members, "");
    return skeleton;
}

json FixedValue(const Structures::AlarmTemplate& row, std::string_view key) {
    if (key == "criticality") {
        return row.criticality;
    }
    if (key == "type") {
        return row.type;
    }
    return nullptr;
}

json AlarmSkeleton(const Structures::AlarmTemplate& row) {
    json alarm{{"_id", nullptr}, {"name", nullptr}};
    for (const Structures::SubElement& element : Structures::SUB_ELEMENTS) {
        if (Structures::BelongsTo(element, row)) {
            json skeleton{
                {"name", element.name}, {"value", FixedValue(row, element.key)}, {"mode", Structures::READ_ONLY}};
            AddMembers(skeleton, element.members, "A");
            alarm["elements"][std::string(element.key)] = std::move(skeleton);
        }
    }
    return alarm;
}

json Wrapped(json skeleton) {
    json structure;
    structure[std::string(Structures::OUTER_MEMBER)] = std::move(skeleton);
    return structure;
}

}  // namespace

json BuildStructure(StructureTemplate structure) {
    const std::size_t row = Structures::RowOf(structure);
    if (row >= Structures::COUNT) {
        return nullptr;
    }
    const std::size_t values = std::size(Structures::VALUES);
    return Wrapped(row < values ? ValueSkeleton(Structures::VALUES[row])
                                : AlarmSkeleton(Structures::ALARMS[row - values]));
}

}  // namespace kz::orba::VortaExtensionModbus::Device
