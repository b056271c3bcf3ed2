#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kzm::ModbusDeviceModel::ServiceImpl {

// Supplies the value of another element while an element is decoded. Implemented by the gateway, called on the thread
// of the request.
class IValueProcesser {
public:
    virtual ~IValueProcesser() = default;

    // Sets `value`, which holds the dependency's default, to the value of the element `name`. False if there is none;
    // `value` is then not used.
    virtual bool GetValue(const std::string& name, nlohmann::json& value) = 0;
};

}  // namespace kzm::ModbusDeviceModel::ServiceImpl
