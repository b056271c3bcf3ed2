#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel {

// Order of the 16-bit words of one element. Any number but 0 and 3 keeps the words in wire order.
enum class ByteOrderingEnum : std::int16_t {
    DEVICE_ORDER = 0,         // as the device-wide flag of the request says
    BIG_ENDIAN_WORDS = 1,     // the most significant word comes first on the wire
    LITTLE_ENDIAN_WORDS = 3,  // the least significant word comes first on the wire
};

}  // namespace kzm::ModbusDeviceModel
