#include "ObjectSelection.h"

#include "ExitStatus.h"
#include "Nearest.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::string KeyOf(const LoadedProfile::Object& object) {
    return object.alias.empty() ? object.name : object.name + "/" + object.alias;
}

std::string NearestObjects(const std::string& wanted, const LoadedProfile& profile) {
    std::vector<std::string> keys;
    for (const LoadedProfile::Object& object : profile.objects) {
        keys.push_back(KeyOf(object));
    }
    return NearestTo(wanted, keys);
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
            if (object.name == text || KeyOf(object) == text) {
                selection.push_back(&object);
            }
        }
        if (selection.size() == before) {
            throw Failure(ExitStatus::OBJECT_NOT_FOUND, "no object \"" + text.substr(0, 200) + "\"; nearest: " +
                                                            NearestObjects(text.substr(0, 200), profile));
        }
    }
    return selection;
}

}  // namespace kzm::ModbusTool
