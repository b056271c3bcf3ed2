#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel::DataModel {

// The role of an attribute adapter inside a data object adapter.
enum AttributeAdapterType : std::int32_t {
    VALUE = 0,         // produces the object's value; mandatory
    AVAILABILITY = 1,  // a boolean: whether the measurement is available
    QUALITY = 2,       // a text: "Good" means Good, any other text means Bad
    TIMESTAMP = 3,     // produces the object's date-time
};

}  // namespace kzm::ModbusDeviceModel::DataModel
