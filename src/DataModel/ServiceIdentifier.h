#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel::ServiceImpl {

// The service of the gateway that handles an object. Its values are the gateway's; any number can be carried.
enum class ServiceIdentifier : std::int32_t {
    NONE = -1,  // no service handles the object
};

}  // namespace kzm::ModbusDeviceModel::ServiceImpl
