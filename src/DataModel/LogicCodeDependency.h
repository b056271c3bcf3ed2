#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kzm::ModbusDeviceModel::DataModel {

// An element whose value another element's decoding needs, named by (name, alias), and the value it has by default.
struct LogicCodeDependency {
    std::string name;      // of the element
    std::string alias;     // of the element
    nlohmann::json value;  // by default
};

}  // namespace kzm::ModbusDeviceModel::DataModel
