#include "DataModel/DataObjectAdapter.h"

#include <utility>
#include <vector>

#include "DataModel/AttributeProcessor.h"
#include "DataModel/ValueRequest.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceCache::_Quality_t;
using DeviceCache::QUALITY_BAD;
using DeviceCache::QUALITY_GOOD;
using DeviceCache::QUALITY_UNINITIALISED;
using kz::orba::StatusCode;
using nlohmann::json;

namespace {

constexpr const char* LOG_MODULE = "DataModel::DataObjectAdapter";

AttributeAdapter* FindAdapter(const DataObjectAdapter::Adapters& adapters, AttributeAdapterType type) {
    const auto found = adapters.find(type);
    return found == adapters.end() ? nullptr : found->second.get();
}

// Whether an adapter is the one sought or reads it at any depth.
bool Reads(const AttributeAdapter& adapter, const AttributeAdapter& sought) {
    std::set<const AttributeAdapter*> seen{&adapter};
    std::vector<const AttributeAdapter*> open{&adapter};
    const auto add = [&](const auto& adapters) {
        for (const auto& [key, next] : adapters) {
            if (next && seen.insert(next.get()).second) {
                open.push_back(next.get());
            }
        }
    };
    while (!open.empty() && open.back() != &sought) {
        const AttributeAdapter* const last = open.back();
        open.pop_back();
        if (const auto* object = dynamic_cast<const DataObjectAdapter*>(last)) {
            add(object->GetAdapters());
        } else if (const auto* processor = dynamic_cast<const AttributeProcessor*>(last)) {
            add(processor->GetInputs());
        }
    }
    return !open.empty();
}

// Reads the availability or the quality of a value and logs a failure.
StatusCode ReadRole(const char* operation, const char* role, AttributeAdapter& adapter, const ValueRequest& request,
                    json& value) {
    auto quality = QUALITY_UNINITIALISED;
    const auto status = GetValueOf(role, adapter, request, quality, value);
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG(INFORMATION, "%s: Did not got value from %s adapter", operation, role);
    } else if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "%s: Failed to get value from %s adapter '%s'", operation, role, Logging::Text(status).c_str());
    }
    return status;
}

StatusCode ReadValue(AttributeAdapter* adapter, const ValueRequest& request, _Quality_t& quality, json& value) {
    constexpr const char* OPERATION = "GetValueWithAvailabilityAndQuality";
    if (adapter == nullptr) {
        KZM_TELL(tObserver, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
        KZM_LOG(ERROR, "%s: Pointer for value is empty", OPERATION);
        return Status::NOT_FOUND;
    }
    const auto status = GetValueOf("value", *adapter, request, quality, value);
    if (status != Status::SUCCESS && status != Status::NOT_AVAILABLE) {
        KZM_LOG(ERROR, "%s: Failed to get value from value adapter '%s'", OPERATION, Logging::Text(status).c_str());
    }
    return status;
}

// The status of a request that gave no value, after logging it.
StatusCode StatusWithoutValue(StatusCode status, const std::string& urn) {
    if (status == Status::NOT_FOUND) {
        return Status::INVALID_ARGUMENT;
    }
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG_TRACE("%s: Did not read from cache, urn=%s", "GetObject", urn.c_str());
    } else if (status != Status::MEASUREMENT_NOT_AVAILABLE) {
        KZM_LOG(ERROR, "%s: Failed to get object value, urn=%s, status=%s", "GetObject", urn.c_str(),
                Logging::Text(status).c_str());
    }
    return status;
}

StatusCode WriteTimestamp(AttributeAdapter& adapter, const ValueRequest& request, const ElementPath& path,
                          kz::orba::VortaORBAObject& object) {
    auto quality = QUALITY_UNINITIALISED;
    json timestamp;
    const auto status = GetValueOf("timestamp", adapter, request, quality, timestamp);
    if (status != Status::SUCCESS) {
        KZM_LOG(INFORMATION, "%s: Failed to get value from timestamp adapter, status=%s", "GetObject",
                Logging::Text(status).c_str());
        return status;
    }
    if (!path.IsEmpty()) {
        timestamp = timestamp.get<std::string>();
    }
    path.SetAttribute(object, "datetime", std::move(timestamp));
    return status;
}

}  // namespace

DataObjectAdapter::DataObjectAdapter(const std::string& elementPath, const std::string& urn)
    : mElementPath(elementPath), mUrn(urn) {}

DataObjectAdapter::~DataObjectAdapter() = default;

StatusCode DataObjectAdapter::SetAdapter(AttributeAdapterType type, const std::shared_ptr<AttributeAdapter>& adapter) {
    if (!adapter) {
        KZM_LOG(ERROR, "%s: Null pointer parameter", __func__);
        return Status::OUT_OF_RANGE;
    }
    if (Reads(*adapter, *this)) {
        KZM_LOG(ERROR, "%s: Refused an adapter that reads this data object itself, urn=%s", __func__, mUrn.c_str());
        return Status::OUT_OF_RANGE;
    }
    if (!mAdapters.emplace(type, adapter).second) {
        KZM_LOG(ERROR, "%s: an adapter is already set", __func__);
        return Status::ALREADY_SET;
    }
    return Status::SUCCESS;
}

StatusCode DataObjectAdapter::GetObject(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                        kz::orba::VortaORBAObject& object) {
    auto quality = QUALITY_UNINITIALISED;
    json value;
    auto status = GetIotValue(mUrn, cache, deviceBigEndian, ignoreCacheAge, quality, value);
    if (status == Status::SUCCESS) {
        mElementPath.SetAttribute(object, "value", std::move(value));
        mElementPath.SetAttribute(object, "quality", ConvertToString(quality));
    } else {
        SetBadAttributeQuality(object);
        status = StatusWithoutValue(status, mUrn);
    }
    if (AttributeAdapter* const timestamp = FindAdapter(mAdapters, TIMESTAMP)) {
        return WriteTimestamp(*timestamp, {cache, deviceBigEndian, ignoreCacheAge, &mUrn}, mElementPath, object);
    }
    mElementPath.SetAttribute(object, "datetime", DateTime::DateTime::GetCalendarTime());
    KZM_LOG(INFORMATION, "%s: Pointer for timestamp is empty, default value is set", __func__);
    return status;
}

std::set<std::uint8_t>& DataObjectAdapter::GetFrameIndexes() {
    return mFrameIndexes;
}

StatusCode DataObjectAdapter::ComputeFrameIndexes() {
    auto status = Status::INVALID_ARGUMENT;
    for (const auto& [type, adapter] : mAdapters) {
        // Its own set, because a data object adapter replaces the content of the set that it is given.
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
    AttributeAdapter* const adapter = FindAdapter(mAdapters, VALUE);
    return adapter ? adapter->GetModbusMeasurementInformation() : Device::ModbusMeasurementInformation{};
}

StatusCode DataObjectAdapter::GetIotValue(const std::string&, const Cache& cache, bool deviceBigEndian,
                                          bool ignoreCacheAge, _Quality_t& quality, json& value) {
    return GetValueWithAvailabilityAndQuality(cache, deviceBigEndian, ignoreCacheAge, /*edm=*/false, quality, value);
}

StatusCode DataObjectAdapter::GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                          _Quality_t& quality, json& value) {
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
    AttributeAdapter* const adapter = FindAdapter(mAdapters, VALUE);
    return adapter ? adapter->GetClassName(className) : Status::NOT_FOUND;
}

StatusCode DataObjectAdapter::GetValueWithAvailabilityAndQuality(const Cache& cache, bool deviceBigEndian,
                                                                 bool ignoreCacheAge, bool edm, _Quality_t& quality,
                                                                 json& value) const {
    StepObserver* const observer = tObserver;
    KZM_TELL(observer, {.kind = StepKind::OBJECT, .text = mUrn});
    bool isAvailable = false;
    bool useValueQuality = true;
    auto status = GetAvailability(cache, deviceBigEndian, ignoreCacheAge, isAvailable);
    if (status == Status::SUCCESS && !isAvailable) {
        KZM_TELL(observer, {.kind = StepKind::AVAILABILITY, .reason = Reason::SWITCHED_OFF, .applied = false});
        KZM_LOG(INFORMATION, "%s: Measurement with urn=%s is not available", __func__, mUrn.c_str());
        status = Status::MEASUREMENT_NOT_AVAILABLE;
    } else if (status == Status::SUCCESS) {
        status = GetQuality(cache, deviceBigEndian, ignoreCacheAge, quality, useValueQuality);
        if (status != Status::SUCCESS) {
            KZM_LOG(INFORMATION, "%s: Failed to get quality", __func__);
        }
    }
    if (status == Status::SUCCESS) {
        const ValueRequest request{cache, deviceBigEndian, ignoreCacheAge, edm ? nullptr : &mUrn};
        auto valueQuality = QUALITY_UNINITIALISED;
        status = ReadValue(FindAdapter(mAdapters, VALUE), request, valueQuality, value);
        if (status == Status::SUCCESS && useValueQuality) {
            quality = valueQuality;
        }
    }
    KZM_TELL(observer, {.kind = StepKind::VALUE, .quality = quality, .status = status, .value = &value});
    KZM_LOG_TRACE("[%s] urn='%s', value=%s, quality=%s, status = %s", __func__, mUrn.c_str(),
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode DataObjectAdapter::GetAvailability(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                              bool& available) const {
    AttributeAdapter* const adapter = FindAdapter(mAdapters, AVAILABILITY);
    available = adapter == nullptr;
    if (available) {
        return Status::SUCCESS;
    }
    json value;
    const ValueRequest request{cache, deviceBigEndian, ignoreCacheAge, &mUrn};
    const auto status = ReadRole(__func__, "availability", *adapter, request, value);
    if (status != Status::SUCCESS) {
        return status;
    }
    if (!value.is_boolean()) {
        KZM_TELL(tObserver, {.kind = StepKind::AVAILABILITY, .reason = Reason::MISCONFIGURED, .value = &value});
        KZM_LOG(ERROR, "[%s] Availability value is not a boolean: '%s'", __func__, Logging::Text(value).c_str());
        return Status::INVALID_ARGUMENT;
    }
    available = value.get<bool>();
    return status;
}

StatusCode DataObjectAdapter::GetQuality(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                         _Quality_t& quality, bool& useValueQuality) const {
    AttributeAdapter* const adapter = FindAdapter(mAdapters, AttributeAdapterType::QUALITY);
    useValueQuality = adapter == nullptr;
    if (useValueQuality) {
        return Status::SUCCESS;
    }
    json value;
    const ValueRequest request{cache, deviceBigEndian, ignoreCacheAge, &mUrn};
    const auto status = ReadRole(__func__, "quality", *adapter, request, value);
    if (status != Status::SUCCESS) {
        return status;
    }
    if (value.is_string()) {
        quality = value.get_ref<const std::string&>() == "Good" ? QUALITY_GOOD : QUALITY_BAD;
        const auto reason = quality == QUALITY_GOOD ? Reason::GOOD : Reason::DEVICE_SAYS_BAD;
        KZM_TELL(tObserver, {.kind = StepKind::QUALITY, .reason = reason, .quality = quality, .value = &value});
    } else {
        KZM_TELL(tObserver, {.kind = StepKind::QUALITY, .reason = Reason::MISCONFIGURED, .value = &value});
        KZM_LOG(ERROR, "[%s] Quality value is not a string '%s'", __func__, Logging::Text(value).c_str());
    }
    return status;
}

void DataObjectAdapter::SetBadAttributeQuality(kz::orba::VortaORBAObject& object) {
    mElementPath.SetAttribute(object, "quality", ConvertToString(QUALITY_BAD));
}

}  // namespace kzm::ModbusDeviceModel::DataModel
