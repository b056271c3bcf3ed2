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
    json elements{{"state", Reported("Alarm.ActiveState")},
                  {"criticality", Reported("Alarm.Criticality")},
                  {"type", Reported("Alarm.Type")},
                  {"customer_alarm_name", UserText("Alarm.CustomerAlarmName", 50)},
                  {"customer_alarm_description", UserText("Alarm.CustomerAlarmDescription", 500)}};
    elements["state"].update({{"datetime", nullptr}, {"quality", nullptr}});
    json structure;
    structure[std::string(Structures::OUTER_MEMBER)] = {
        {"_id", nullptr}, {"name", nullptr}, {"alias", nullptr}, {"elements", std::move(elements)}};
    return structure;
}

}  // namespace kz::orba::VortaExtensionModbus::Device
