#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/Observation.h"
#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A request for a value as one adapter passes it on to the next; AttributeAdapter explains the two flags.
struct ValueRequest {
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache;
    bool deviceBigEndian;
    bool ignoreCacheAge;
    const std::string* urn;  // of the attribute; null asks for the device-dictionary form
};

// Asks the adapter of a role for its value in the requested form.
inline kz::orba::StatusCode GetValueOf(std::string_view role, AttributeAdapter& adapter, const ValueRequest& request,
                                       DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    return RunPart(tObserver, role, &adapter, quality, &value, [&] {
        const auto& [cache, deviceBigEndian, ignoreCacheAge, urn] = request;
        return urn ? adapter.GetIotValue(*urn, cache, deviceBigEndian, ignoreCacheAge, quality, value)
                   : adapter.GetEdmValue(cache, deviceBigEndian, ignoreCacheAge, quality, value);
    });
}

// Translates an enumeration label with the platform's dictionaries; `urn` as in ValueRequest.
inline kz::orba::StatusCode TranslateLabel(const std::string* urn, const std::string& label, nlohmann::json& value) {
    return urn ? edm::dictionary::EdmEnumToIotValue::ConvertEdmEnumToIotValue(*urn, label, value)
               : edm::dictionary::EdmEnumToEdmValue::ConvertEdmEnumToEdmValue(label, value);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
