#include "dictionary/CustomAlarmElementStructure.h"

#include <nlohmann/json.hpp>

#include "dictionary/StructureTable.h"

namespace kz::orba::VortaExtensionModbus::Device {

namespace {

using nlohmann::json;

json Reported(const char* name) {
    return {{"name", name}, {"mode", Structures::READ_ONLY}, {"value", nullptr}};
}

json UserText(const char* name, int maxLength) {
    return {{"name", name},
            {"mode", Structures::READ_WRITE},
            {"value", nullptr},
            {"locked", true},
            {"max_length", maxLength}};
}

}  // namespace

json CustomAlarmElementStructure::GetStructure() {
    json structure;
    json& skeleton = structure[std::string(Structures::OUTER_MEMBER)];
    for (const char* member : {"_id", "name", "alias"}) {
        skeleton[member] = nullptr;
    }
    json& elements = skeleton["elements"];
    elements["state"] = Reported("Alarm.ActiveState");
    elements["state"]["datetime"] = nullptr;
    elements["state"]["quality"] = nullptr;
    elements["criticality"] = Reported("Alarm.Criticality");
    elements["type"] = Reported("Alarm.Type");
    elements["customer_alarm_name"] = UserText("Alarm.CustomerAlarmName", 50);
    elements["customer_alarm_description"] = UserText("Alarm.CustomerAlarmDescription", 500);
    return structure;
}

}  // namespace kz::orba::VortaExtensionModbus::Device
