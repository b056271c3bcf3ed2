#include "ObjectSelection.h"

#include "ExitStatus.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::string Join(const std::string& name, const std::string& alias) {
    return alias.empty() ? name : name + "/" + alias;
}

bool IsNamed(const LoadedProfile::Object& object, const std::string& text) {
    return object.name == text || NameOf(object) == text || (object.key == text && !text.empty());
}

bool IsNamed(const LoadedProfile::Alarm& alarm, const std::string& text) {
    const std::string& name = alarm.element->GetName();
    return name == text || alarm.alias == text || Join(name, alarm.alias) == text ||
           Join(alarm.name, alarm.alias) == text;
}

Names NamesOfObjects(const LoadedProfile& profile) {
    Names names;
    for (const LoadedProfile::Object& object : profile.objects) {
        names.push_back(NameOf(object));
        names.push_back(object.key);
    }
    return names;
}

// Those of a list that have the name.
template <typename Items>
auto Named(const Items& items, const std::string& text) {
    std::vector<const typename Items::value_type*> named;
    for (const auto& item : items) {
        if (IsNamed(item, text)) {
            named.push_back(&item);
        }
    }
    return named;
}

}  // namespace

std::string NameOf(const LoadedProfile::Object& object) {
    return Join(object.name, object.alias);
}

Selection SelectObjects(const LoadedProfile& profile, const std::vector<std::string>& wanted) {
    Selection selection;
    for (const LoadedProfile::Object& object : profile.objects) {
        if (wanted.empty()) {
            selection.push_back(&object);
        }
    }
    for (const std::string& text : wanted) {
        const Selection named = Named(profile.objects, text);
        if (named.empty()) {
            throw Failure(ExitStatus::NOT_FOUND,
                          "no object " + Quoted(text) + Suggestion(text, NamesOfObjects(profile)));
        }
        selection.insert(selection.end(), named.begin(), named.end());
    }
    return selection;
}

Targets SelectTargets(const LoadedProfile& profile, const std::string& wanted) {
    Targets targets{Named(profile.objects, wanted), Named(profile.alarms, wanted)};
    if (targets.objects.empty() && targets.alarms.empty()) {
        Names names = NamesOfObjects(profile);
        for (const LoadedProfile::Alarm& alarm : profile.alarms) {
            names.push_back(alarm.element->GetName());
        }
        const char* const kinds = profile.alarms.empty() ? "no object " : "no object or alarm ";
        throw Failure(ExitStatus::NOT_FOUND, kinds + Quoted(wanted) + Suggestion(wanted, names));
    }
    return targets;
}

}  // namespace kzm::ModbusTool
