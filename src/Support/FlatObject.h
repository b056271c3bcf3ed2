#pragma once

#include <nlohmann/json.hpp>

namespace kzm::ModbusDeviceModel {

// A JSON object of plain values that lives as long as a request. It is cleared before it is destroyed, because the JSON
// library's destructor of a non-empty object allocates, and ends the process if there is no memory.
class FlatObject {
public:
    FlatObject() : mObject(nlohmann::json::object()) {}
    ~FlatObject() { mObject.clear(); }
    FlatObject(const FlatObject&) = delete;
    FlatObject& operator=(const FlatObject&) = delete;

    nlohmann::json& Get() { return mObject; }

private:
    nlohmann::json mObject;
};

}  // namespace kzm::ModbusDeviceModel
