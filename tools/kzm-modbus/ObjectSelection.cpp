#include "ObjectSelection.h"

#include "ExitStatus.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::string NameAndAlias(const LoadedProfile::Object& object) {
    return object.alias.empty() ? object.name : object.name + "/" + object.alias;
}

std::string ObjectSuggestion(const std::string& wanted, const LoadedProfile& profile) {
    Names names;
    for (const LoadedProfile::Object& object : profile.objects) {
        names.push_back(NameAndAlias(object));
        names.push_back(object.key);
    }
    return Suggestion(wanted, names);
}

}  // namespace

Selection SelectObjects(const LoadedProfile& profile, const std::vector<std::string>& wanted) {
    Selection selection;
    for (const LoadedProfile::Object& object : profile.objects) {
        if (wanted.empty()) {
            selection.push_back(&object);
        }
    }
    for (const std::string& text : wanted) {
        const std::size_t before = selection.size();
        for (const LoadedProfile::Object& object : profile.objects) {
            if (object.name == text || NameAndAlias(object) == text || (object.key == text && !text.empty())) {
                selection.push_back(&object);
            }
        }
        if (selection.size() == before) {
            throw Failure(ExitStatus::NOT_FOUND, "no object " + Quoted(text) + ObjectSuggestion(text, profile));
        }
    }
    return selection;
}

}  // namespace kzm::ModbusTool
