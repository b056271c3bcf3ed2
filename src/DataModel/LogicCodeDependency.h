#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kzm::ModbusDeviceModel::DataModel {

// An element whose value another element's decoding needs, named by (name, alias), and the value it has by default.
struct LogicCodeDependency {
    std::string name;
    std::string alias;
    nlohmann::json value;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
