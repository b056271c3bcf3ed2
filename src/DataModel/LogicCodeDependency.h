#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kzm::ModbusDeviceModel::DataModel {

// Another element whose value an element needs for its decoding.
struct LogicCodeDependency {
    std::string name;      // of the element
    std::string alias;     // of the element
    nlohmann::json value;  // with which the value processor is asked
};

}  // namespace kzm::ModbusDeviceModel::DataModel
