#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kzm/Platform/Export.h"

namespace kz::orba {

// One object of the data model: its names and its JSON value, which is changed in place. Not synchronised: used by one
// thread at a time.
class KZM_PLATFORM_EXPORT VortaORBAObject {
public:
    // The value may be any JSON, including null.
    VortaORBAObject(std::string id, std::string name, std::string alias, nlohmann::json value);

    // What the constructor was given; the value is changed in place.
    const std::string& GetId() const { return mId; }
    const std::string& GetName() const { return mName; }
    const std::string& GetAlias() const { return mAlias; }
    nlohmann::json& GetValue() { return mValue; }
    const nlohmann::json& GetValue() const { return mValue; }

    // Sets one top-level attribute. A null value becomes an object first. Any other value that is not an object is left
    // as it is, and the JSON library throws type_error 305.
    void AddOrUpdateAttributeToValue(const std::string& key, nlohmann::json value);

private:
    std::string mId;
    std::string mName;
    std::string mAlias;
    nlohmann::json mValue;
};

}  // namespace kz::orba
