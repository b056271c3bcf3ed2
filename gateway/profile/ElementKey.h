#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "gateway/Export.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

// A key of the data model under which a profile publishes an object, and what the dictionary knows of it: an element of
// the dictionary ("DTMinIA;MinIA"), an identification element ("394"), or a custom measurement or alarm with its
// encoded alias ("7b8Cage_203").
class ElementKey {
public:
    // Throws std::invalid_argument, with what is wrong and what is near, for a text that is not a key.
    KZM_GATEWAY_EXPORT static ElementKey Find(const std::string& text);

    // `; did you mean "..."?` with up to three keys of the dictionary: those whose element has the text as its name or
    // is fed by the device element of that id, otherwise those that are spelt like the text. Empty if nothing is near.
    KZM_GATEWAY_EXPORT static std::string Suggestion(std::string_view text);

    // The key as it was given, the name of its element, its alias, unit and data-model class.
    const std::string& GetText() const { return mText; }
    const std::string& GetName() const { return mName; }
    const std::string& GetAlias() const { return mAlias; }  // any bytes; only custom ones have one
    KZM_GATEWAY_EXPORT std::string GetUnit() const;         // may be empty
    KZM_GATEWAY_EXPORT std::string GetClassName() const;    // empty if it depends on the type of the value
    // Whether it is the key of a custom alarm.
    KZM_GATEWAY_EXPORT bool IsCustomAlarm() const;

    // The element paths of the object that device elements feed, the one of its main value first.
    KZM_GATEWAY_EXPORT Names GetPaths() const;
    // The id of the device element that feeds an attribute ("value", "quality", "datetime") at an element path; empty
    // if none does.
    KZM_GATEWAY_EXPORT std::string GetSource(const std::string& path, const std::string& attribute) const;

    // The object before the device has filled it: its structure, with key, name, alias and unit.
    KZM_GATEWAY_EXPORT nlohmann::json MakeObject(const std::string& name, const std::string& alias,
                                                 const std::string& unit) const;

private:
    ElementKey(std::string text, std::string name, std::string alias);
    bool IsInDictionary() const;

    std::string mText;
    std::string mName;
    std::string mAlias;
};

}  // namespace kzm::ModbusGateway
