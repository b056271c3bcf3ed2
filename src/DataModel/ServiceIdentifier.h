#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel::ServiceImpl {

// The service of the gateway that handles an object. The gateway defines the values; any number is accepted.
enum class ServiceIdentifier : std::int32_t {
    NONE = -1,  // no service handles the object
};

}  // namespace kzm::ModbusDeviceModel::ServiceImpl
