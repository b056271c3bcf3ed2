#include "DataModel/DataObjectAdapter.h"

#include <utility>

#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceCache::QUALITY_BAD;
using DeviceCache::QUALITY_GOOD;
using DeviceCache::QUALITY_UNINITIALISED;
using kz::orba::StatusCode;
using nlohmann::json;

namespace {

constexpr const char* LOG_MODULE = "DataModel::DataObjectAdapter";

}  // namespace

DataObjectAdapter::DataObjectAdapter(const std::string& elementPath, const std::string& urn)
    : mElementPath(elementPath), mUrn(urn) {}

DataObjectAdapter::~DataObjectAdapter() = default;

StatusCode DataObjectAdapter::SetAdapter(AttributeAdapterType type, const std::shared_ptr<AttributeAdapter>& adapter) {
    // An adapter that holds itself would ask itself without end.
    if (!adapter || adapter.get() == this) {
        KZM_LOG(ERROR, "%s: Null pointer parameter", __func__);
        return Status::OUT_OF_RANGE;
    }
    if (!mAdapters.emplace(type, adapter).second) {
        KZM_LOG(ERROR, "%s: an adapter is already set", __func__);
        return Status::ALREADY_SET;
    }
    return Status::SUCCESS;
}

AttributeAdapter* DataObjectAdapter::FindAdapter(AttributeAdapterType type) const {
    const auto found = mAdapters.find(type);
    return found == mAdapters.end() ? nullptr : found->second.get();
}

StatusCode DataObjectAdapter::GetObject(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                        kz::orba::VortaORBAObject& object) {
    const auto status = WriteValueAndQuality(cache, deviceBigEndian, ignoreCacheAge, object);
    return WriteTimestamp(cache, deviceBigEndian, ignoreCacheAge, object, status);
}

StatusCode DataObjectAdapter::WriteValueAndQuality(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                                   kz::orba::VortaORBAObject& object) {
    auto quality = QUALITY_UNINITIALISED;
    json value;
    const auto status = GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, quality, value);
    if (status == Status::SUCCESS) {
        mElementPath.SetAttribute(object, "value", std::move(value));
        mElementPath.SetAttribute(object, "quality", ConvertToString(quality));
        return status;
    }
    SetBadAttributeQuality(object);
    if (status == Status::NOT_FOUND) {
        return Status::INVALID_ARGUMENT;
    }
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG_TRACE("%s: Did not read from cache, urn=%s", "GetObject", mUrn.c_str());
    } else if (status != Status::MEASUREMENT_NOT_AVAILABLE) {
        KZM_LOG(ERROR, "%s: Failed to get object value, urn=%s, status=%s", "GetObject", mUrn.c_str(),
                Logging::Text(status).c_str());
    }
    return status;
}

StatusCode DataObjectAdapter::WriteTimestamp(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                             kz::orba::VortaORBAObject& object, StatusCode valueStatus) const {
    AttributeAdapter* const adapter = FindAdapter(TIMESTAMP);
    if (adapter == nullptr) {
        mElementPath.SetAttribute(object, "datetime", DateTime::DateTime::GetCalendarTime());
        KZM_LOG(INFORMATION, "%s: Pointer for timestamp is empty, default value is set", "GetObject");
        return valueStatus;
    }
    auto quality = QUALITY_UNINITIALISED;
    json timestamp;
    const auto status = adapter->GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, quality, timestamp);
    if (status != Status::SUCCESS) {
        KZM_LOG(INFORMATION, "%s: Failed to get value from timestamp adapter, status=%s", "GetObject",
                Logging::Text(status).c_str());
        return status;
    }
    if (!mElementPath.IsEmpty()) {
        timestamp = timestamp.get<std::string>();
    }
    mElementPath.SetAttribute(object, "datetime", std::move(timestamp));
    return status;
}

std::set<std::uint8_t>& DataObjectAdapter::GetFrameIndexes() {
    return mFrameIndexes;
}

StatusCode DataObjectAdapter::ComputeFrameIndexes() {
    auto status = Status::INVALID_ARGUMENT;
    for (const auto& [type, adapter] : mAdapters) {
        // A data object adapter replaces the set that it is handed; what the others added must stay.
        std::set<std::uint8_t> frameIndexes;
        status = adapter->ComputeAndGetFrameIndexes(frameIndexes);
        mFrameIndexes.merge(frameIndexes);
        if (status != Status::SUCCESS) {
            KZM_LOG(ERROR, "%s: Failed to get frame indexes from adapter, status=%s", __func__,
                    Logging::Text(status).c_str());
            break;
        }
    }
    return status;
}

Device::ModbusMeasurementInformation DataObjectAdapter::GetModbusMeasurementInformation() const {
    AttributeAdapter* const adapter = FindAdapter(VALUE);
    return adapter ? adapter->GetModbusMeasurementInformation() : Device::ModbusMeasurementInformation{};
}

StatusCode DataObjectAdapter::GetIotValue(const std::string&, const Cache& cache, bool deviceBigEndian,
                                          bool ignoreCacheAge, DeviceCache::_Quality_t& quality, json& value) {
    return GetValueWithAvailabilityAndQuality(cache, deviceBigEndian, ignoreCacheAge, /*edm=*/false, quality, value);
}

StatusCode DataObjectAdapter::GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                          DeviceCache::_Quality_t& quality, json& value) {
    return GetValueWithAvailabilityAndQuality(cache, deviceBigEndian, ignoreCacheAge, /*edm=*/true, quality, value);
}

StatusCode DataObjectAdapter::ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) {
    const auto status = ComputeFrameIndexes();
    if (status == Status::SUCCESS) {
        frameIndexes = mFrameIndexes;
    }
    return status;
}

bool DataObjectAdapter::HasEnumOutput() const {
    return false;
}

StatusCode DataObjectAdapter::GetClassName(std::string& className) const {
    AttributeAdapter* const adapter = FindAdapter(VALUE);
    return adapter ? adapter->GetClassName(className) : Status::NOT_FOUND;
}

StatusCode DataObjectAdapter::GetValueWithAvailabilityAndQuality(const Cache& cache, bool deviceBigEndian,
                                                                 bool ignoreCacheAge, bool edm,
                                                                 DeviceCache::_Quality_t& quality, json& value) const {
    bool isAvailable = false;
    bool useValueQuality = true;
    auto status = GetAvailability(cache, deviceBigEndian, ignoreCacheAge, isAvailable);
    if (status == Status::SUCCESS && !isAvailable) {
        KZM_LOG(INFORMATION, "%s: Measurement with urn=%s is not available", __func__, mUrn.c_str());
        status = Status::MEASUREMENT_NOT_AVAILABLE;
    } else if (status == Status::SUCCESS) {
        status = GetQuality(cache, deviceBigEndian, ignoreCacheAge, quality, useValueQuality);
        if (status != Status::SUCCESS) {
            KZM_LOG(INFORMATION, "%s: Failed to get quality", __func__);
        } else {
            auto valueQuality = QUALITY_UNINITIALISED;
            status = ReadValue(cache, deviceBigEndian, ignoreCacheAge, edm, valueQuality, value);
            if (status == Status::SUCCESS && useValueQuality) {
                quality = valueQuality;
            }
        }
    }
    KZM_LOG_TRACE("[%s] urn='%s', value=%s, quality=%s, status = %s", __func__, mUrn.c_str(),
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode DataObjectAdapter::ReadValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge, bool edm,
                                        DeviceCache::_Quality_t& quality, json& value) const {
    constexpr const char* OPERATION = "GetValueWithAvailabilityAndQuality";
    AttributeAdapter* const adapter = FindAdapter(VALUE);
    if (adapter == nullptr) {
        KZM_LOG(ERROR, "%s: Pointer for value is empty", OPERATION);
        return Status::NOT_FOUND;
    }
    const auto status = edm ? adapter->GetEdmValue(cache, deviceBigEndian, ignoreCacheAge, quality, value)
                            : adapter->GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, quality, value);
    if (status != Status::SUCCESS && status != Status::NOT_AVAILABLE) {
        KZM_LOG(ERROR, "%s: Failed to get value from value adapter '%s'", OPERATION, Logging::Text(status).c_str());
    }
    return status;
}

StatusCode DataObjectAdapter::GetAvailability(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                              bool& available) const {
    AttributeAdapter* const adapter = FindAdapter(AVAILABILITY);
    available = adapter == nullptr;
    if (available) {
        return Status::SUCCESS;
    }
    auto quality = QUALITY_UNINITIALISED;
    json value;
    const auto status = adapter->GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, quality, value);
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG(INFORMATION, "%s: Did not got value from availability adapter", __func__);
        return status;
    }
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "%s: Failed to get value from availability adapter '%s'", __func__,
                Logging::Text(status).c_str());
        return status;
    }
    if (!value.is_boolean()) {
        KZM_LOG(ERROR, "[%s] Availability value is not a boolean: '%s'", __func__, Logging::Text(value).c_str());
        return Status::INVALID_ARGUMENT;
    }
    available = value.get<bool>();
    return status;
}

StatusCode DataObjectAdapter::GetQuality(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                         DeviceCache::_Quality_t& quality, bool& useValueQuality) const {
    AttributeAdapter* const adapter = FindAdapter(AttributeAdapterType::QUALITY);
    useValueQuality = adapter == nullptr;
    if (useValueQuality) {
        return Status::SUCCESS;
    }
    auto cacheQuality = QUALITY_UNINITIALISED;
    json value;
    const auto status = adapter->GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, cacheQuality, value);
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG(INFORMATION, "%s: Did not got value from quality adapter", __func__);
        return status;
    }
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "%s: Failed to get value from quality adapter '%s'", __func__, Logging::Text(status).c_str());
        return status;
    }
    if (value.is_string()) {
        quality = value.get_ref<const std::string&>() == "Good" ? QUALITY_GOOD : QUALITY_BAD;
    } else {
        KZM_LOG(ERROR, "[%s] Quality value is not a string '%s'", __func__, Logging::Text(value).c_str());
    }
    return status;
}

void DataObjectAdapter::SetBadAttributeQuality(kz::orba::VortaORBAObject& object) {
    mElementPath.SetAttribute(object, "quality", ConvertToString(QUALITY_BAD));
}

}  // namespace kzm::ModbusDeviceModel::DataModel
