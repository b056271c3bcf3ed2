#include "kz/orba/VortaORBAObject.h"

#include <utility>

namespace kz::orba {

VortaORBAObject::VortaORBAObject(std::string id, std::string name, std::string alias, nlohmann::json value)
    : mId(std::move(id)), mName(std::move(name)), mAlias(std::move(alias)), mValue(std::move(value)) {}

void VortaORBAObject::AddOrUpdateAttributeToValue(const std::string& key, nlohmann::json value) {
    if (mValue.is_null()) {
        // operator[] would leave an object without its map when memory runs out.
        mValue = nlohmann::json::object();
    }
    mValue[key] = std::move(value);
}

}  // namespace kz::orba
