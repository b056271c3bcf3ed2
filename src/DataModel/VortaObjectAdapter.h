#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/ModbusMeasurementInformation.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kz::orba {
class VortaORBAObject;
}

namespace kzm::ModbusDeviceModel::DataModel {

// Fills one data-model object from the register cache. GetObject changes no adapter and may run on many threads at
// once; ComputeFrameIndexes is called while the device model is built, before any request.
class KZM_MODBUS_EXPORT VortaObjectAdapter {
public:
    virtual ~VortaObjectAdapter();

    // Reads the values and writes them into `object`. The two flags are those of AttributeAdapter.
    virtual kz::orba::StatusCode GetObject(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                           bool deviceBigEndian, bool ignoreCacheAge,
                                           kz::orba::VortaORBAObject& object) = 0;
    // The set that ComputeFrameIndexes has filled.
    virtual std::set<std::uint8_t>& GetFrameIndexes() = 0;
    // Stores the indexes of the frames that the adapter reads.
    virtual kz::orba::StatusCode ComputeFrameIndexes() = 0;
    // How the value is read from the device; a default record if it is not read from one element.
    virtual Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const = 0;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
