#pragma once

#include <functional>
#include <string>
#include <utility>

namespace kzm::ModbusDeviceModel::DataModel {

// Hashes a (name, alias) pair.
struct pair_hash {
    // The hashes of both texts, combined.
    std::size_t operator()(const std::pair<std::string, std::string>& key) const {
        return std::hash<std::string>{}(key.first) ^ std::hash<std::string>{}(key.second);
    }
};

}  // namespace kzm::ModbusDeviceModel::DataModel
