#pragma once

#include <functional>
#include <string>

namespace kzm::ModbusDeviceModel::DataModel {

// The (name, alias) pair that names a data-model object, as a record.
struct ObjectKey {
    std::string name;   // of the data-model object, e.g. "ElectricalMeasurement.RmsCurrentPhsA"
    std::string alias;  // distinguishes objects of the same name; may be empty

    // Whether both texts are equal.
    bool operator==(const ObjectKey&) const = default;
};

}  // namespace kzm::ModbusDeviceModel::DataModel

template <>
struct std::hash<kzm::ModbusDeviceModel::DataModel::ObjectKey> {
    std::size_t operator()(const kzm::ModbusDeviceModel::DataModel::ObjectKey& key) const {
        return std::hash<std::string>{}(key.name + key.alias);
    }
};
