#include "DataModel/ElementPath.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusDeviceModel::DataModel {

using nlohmann::json;

namespace {

json& Descend(json& parent, const std::string& token) {
    if (parent.is_null()) {
        // operator[] would do the same, but leaves an object without its map if memory runs out.
        parent = json::object();
    }
    if (parent.is_object()) {
        return parent[token];
    }
    json::json_pointer pointer;
    pointer.push_back(token);
    return parent[pointer];
}

}  // namespace

ElementPath::ElementPath(const std::string& path) {
    if (path.empty()) {
        return;
    }
    for (json::json_pointer pointer("/elements/" + path); !pointer.empty(); pointer.pop_back()) {
        mTokens.push_back(pointer.back());
    }
    std::reverse(mTokens.begin(), mTokens.end());
}

void ElementPath::SetAttribute(kz::orba::VortaORBAObject& object, const std::string& key, json&& value) const {
    if (IsEmpty()) {
        object.AddOrUpdateAttributeToValue(key, std::move(value));
        return;
    }
    json* parent = &object.GetValue();
    for (const std::string& token : mTokens) {
        parent = &Descend(*parent, token);
    }
    Descend(*parent, key) = std::move(value);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
