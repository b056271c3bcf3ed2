#include "gateway/profile/ElementKey.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "dictionary/CustomAlarmElementStructure.h"
#include "dictionary/DeviceElementLookUp.h"
#include "edm/modbus/Vorta.h"

namespace kzm::ModbusGateway {

using kz::orba::VortaExtensionModbus::Device::CustomAlarmElementStructure;
using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;
using kz::orba::VortaExtensionModbus::Device::DictionaryEntry;
using nlohmann::json;
namespace Vorta = edm::modbus::Vorta;

namespace {

constexpr std::size_t MOST_MEANT = 3;
constexpr const char* ELEMENTS = "elements.";
constexpr const char* MAIN_PATH = "state";  // of an alarm or a protection, beside its snapshots

// The path of an attribute within an object: "elements.state.value" is "value" at the element path "state".
std::string DictionaryPath(const std::string& path, const std::string& attribute) {
    return path.empty() ? attribute : ELEMENTS + path + '.' + attribute;
}

std::string ElementPathOf(const std::string& dictionaryPath) {
    const std::size_t begin = dictionaryPath.starts_with(ELEMENTS) ? std::string_view(ELEMENTS).size() : 0;
    const std::size_t end = dictionaryPath.rfind('.');
    return begin == 0 ? "" : dictionaryPath.substr(begin, end - begin);
}

// Whether the text is the element's name or the id of a device element that feeds it.
bool IsOf(const DictionaryEntry& entry, std::string_view text) {
    return entry.name == text || std::any_of(entry.sources.begin(), entry.sources.end(),
                                             [&](const auto& source) { return source.second == text; });
}

}  // namespace

ElementKey::ElementKey(std::string text, std::string name, std::string alias)
    : mText(std::move(text)), mName(std::move(name)), mAlias(std::move(alias)) {}

ElementKey ElementKey::Find(const std::string& text) {
    std::string name;
    std::string alias;
    try {
        if (Vorta::GetIoTNameAndAlias(text, name, alias) != kz::orba::StatusCode{}) {
            throw std::invalid_argument("an encoded alias is missing; a custom key is " + Quoted(text) +
                                        " followed by one");
        }
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(Quoted(text) + " is not a key: " + error.what());
    }
    ElementKey key(text, std::move(name), std::move(alias));
    if (key.mAlias.empty() && !key.IsInDictionary() && !DeviceElementLookUp::CheckIdVortaElement(text)) {
        throw std::invalid_argument("the dictionary has no key " + Quoted(text) + Suggestion(text));
    }
    return key;
}

std::string ElementKey::Suggestion(std::string_view text) {
    Names keys;
    Names meant;
    for (const auto* table : DeviceElementLookUp::GetTables()) {
        for (const auto& row : *table) {
            keys.emplace_back(row.first);
            if (IsOf(row.second, text)) {
                meant.emplace_back(row.first);
            }
        }
    }
    meant.resize(std::min(meant.size(), MOST_MEANT));
    return meant.empty() ? ModbusGateway::Suggestion(text, keys) : "; " + DidYouMean(meant);
}

bool ElementKey::IsInDictionary() const {
    return !DeviceElementLookUp::GetName(mText).empty();
}

bool ElementKey::IsCustomAlarm() const {
    return mName == Vorta::GetCustomAlarmIotName();
}

std::string ElementKey::GetUnit() const {
    return DeviceElementLookUp::GetUnit(mText);
}

std::string ElementKey::GetClassName() const {
    return IsInDictionary() ? DeviceElementLookUp::GetClass(mText) : "";
}

Names ElementKey::GetPaths() const {
    Names paths;
    for (const auto& source : DeviceElementLookUp::GetPdmId(mText)) {
        paths.push_back(ElementPathOf(source.first));
    }
    if (paths.empty()) {
        return {""};
    }
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    std::stable_partition(paths.begin(), paths.end(), [](const std::string& path) { return path == MAIN_PATH; });
    return paths;
}

std::string ElementKey::GetSource(const std::string& path, const std::string& attribute) const {
    if (IsInDictionary()) {
        return DeviceElementLookUp::GetMappedAttributePath(mText, DictionaryPath(path, attribute));
    }
    return path.empty() && attribute == "value" ? mText : "";
}

json ElementKey::MakeObject(const std::string& name, const std::string& alias, const std::string& unit) const {
    json structure =
        IsCustomAlarm() ? CustomAlarmElementStructure::GetStructure() : DeviceElementLookUp::GetStructure(mText);
    json object = std::move(structure.front());
    const std::pair<const char*, const std::string&> members[] = {
        {"_id", mText}, {"name", name}, {"alias", alias}, {"unit", unit}};
    for (const auto& [member, text] : members) {
        if (object.contains(member)) {
            object[member] = text;
        }
    }
    return object;
}

}  // namespace kzm::ModbusGateway
