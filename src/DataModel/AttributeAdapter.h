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
// or a whole data object. Value requests change no adapter and may run on many threads at once.
//
// Two flags are passed down with every request. `deviceBigEndian`: the device sends the most significant word first;
// used by elements that have no order of their own. `ignoreCacheAge`: use a frame however old it is; otherwise a frame
// that is not fresh (DeviceCache::IsFresh) gives no value (NOT_AVAILABLE). Statuses are named as in Support/Status.h.
class KZM_MODBUS_EXPORT AttributeAdapter {
public:
    virtual ~AttributeAdapter();

    // The value in its data-model form. `urn` identifies the attribute: enumeration labels are translated for it, and
    // log lines name it. SUCCESS: `value` and `quality` are set. After any other status `quality` is what the cache
    // gave, untouched if the cache was not read, and `value` must not be used.
    virtual kz::orba::StatusCode GetIotValue(const std::string& urn,
                                             const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                             bool deviceBigEndian, bool ignoreCacheAge,
                                             DeviceCache::_Quality_t& quality, nlohmann::json& value) = 0;
    // Like GetIotValue, in the device-dictionary form.
    virtual kz::orba::StatusCode GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                             bool deviceBigEndian, bool ignoreCacheAge,
                                             DeviceCache::_Quality_t& quality, nlohmann::json& value) = 0;
    // Adds the indexes of the frames that a request reads. A data object adapter replaces the set instead.
    virtual kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) = 0;
    // The data-model class of the value. `className` is untouched unless the status is SUCCESS.
    virtual kz::orba::StatusCode GetClassName(std::string& className) const = 0;
    // How the value is read from the device; a default record if it is not read from one element.
    virtual Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const = 0;
    // Whether the value is an enumeration label that the adapter translates.
    virtual bool HasEnumOutput() const = 0;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
