#pragma once

#include <nlohmann/json.hpp>

namespace kzm::ModbusDeviceModel {

// A JSON object for the life of a request, whose members are plain values. It is emptied before it ends, because the
// JSON library's destructor takes memory to take members down, and ends the process where there is none.
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
