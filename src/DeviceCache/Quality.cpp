#include "DeviceCache/Quality.h"

namespace kzm::ModbusDeviceModel::DeviceCache {

std::string ConvertToString(_Quality_t quality) {
    switch (quality) {
        case QUALITY_UNINITIALISED:
            return "Uninitialised";
        case QUALITY_GOOD:
            return "Good";
        case QUALITY_BAD:
            return "Bad";
        case QUALITY_QUESTIONABLE:
            return "Questionable";
    }
    return "UNKNOWN";
}

}  // namespace kzm::ModbusDeviceModel::DeviceCache
