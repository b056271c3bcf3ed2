#pragma once

#include <cstdint>
#include <string>

#include "Export.h"

namespace kzm::ModbusDeviceModel::DeviceCache {

// How far a value read from the register cache can be trusted.
enum _Quality_t : std::int32_t {
    QUALITY_UNINITIALISED = 0,  // the cache has never received the frame
    QUALITY_GOOD = 1,           // read and trusted
    QUALITY_BAD = 2,            // read, but marked bad by the gateway
    QUALITY_QUESTIONABLE = 3,   // read, but doubtful
};

// "Uninitialised", "Good", "Bad" or "Questionable"; "UNKNOWN" for any other number. Thread-safe.
KZM_MODBUS_EXPORT std::string ConvertToString(_Quality_t quality);

}  // namespace kzm::ModbusDeviceModel::DeviceCache
