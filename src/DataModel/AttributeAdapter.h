#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>

#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/ModbusMeasurementInformation.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Produces the value of one attribute of a data-model object on request: a constant, a decoded element, a computation,
// or a whole data object. Value requests change nothing and run on many threads at once.
//
// Two flags travel with every request. `deviceBigEndian`: the device sends the most significant word first; applies to
// elements without an order of their own. `ignoreCacheAge`: decode a frame however old it is; without it a frame older
// than DEFAULT_REGISTER_CACHE_TIMEOUT_MS, or never received, gives no value (status 42).
class KZM_MODBUS_EXPORT AttributeAdapter {
public:
    virtual ~AttributeAdapter();

    // The value in its data-model form. `urn` identifies the attribute, for the translation of enumeration labels and
    // for log lines. 0: `value` and `quality` are set. Any other status: `quality` is what the cache gave, or untouched
    // when the cache was not read, and `value` is of no use.
    virtual kz::orba::StatusCode GetIotValue(const std::string& urn,
                                             const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                             bool deviceBigEndian, bool ignoreCacheAge,
                                             DeviceCache::_Quality_t& quality, nlohmann::json& value) = 0;
    // The value in its device-dictionary form; otherwise as GetIotValue.
    virtual kz::orba::StatusCode GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                             bool deviceBigEndian, bool ignoreCacheAge,
                                             DeviceCache::_Quality_t& quality, nlohmann::json& value) = 0;
    // Adds the indexes of the frames that are read. A data object adapter replaces the set instead.
    virtual kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) = 0;
    // The data-model class of the value. Any status but 0 leaves `className` untouched.
    virtual kz::orba::StatusCode GetClassName(std::string& className) const = 0;
    // How the value is read from the device; a default record where that cannot be said.
    virtual Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const = 0;
    // Whether the value is an enumeration label that is translated.
    virtual bool HasEnumOutput() const = 0;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
