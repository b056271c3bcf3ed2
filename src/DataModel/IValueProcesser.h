#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kzm::ModbusDeviceModel::ServiceImpl {

// Supplies the value of another element while an element is decoded. Implemented by the gateway, called on the thread
// of the request.
class IValueProcesser {
public:
    virtual ~IValueProcesser() = default;

    // Puts the value of the element `name` into `value`, which comes in as the dependency's own default. False when
    // there is none; `value` is then not used.
    virtual bool GetValue(const std::string& name, nlohmann::json& value) = 0;
};

}  // namespace kzm::ModbusDeviceModel::ServiceImpl
