#include "DataModel/AttributeConverter.h"

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "DataModel/MeasurementInformationOf.h"
#include "Device/CustomMeasureClassName.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"
#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceCache::CacheReadAccessInterface;
using edm::dictionary::EdmEnumToEdmValue;
using edm::dictionary::EdmEnumToIotValue;
using kz::orba::StatusCode;

namespace {

constexpr const char* LOG_MODULE = "DataModel::AttributeConverter";
constexpr int REQUEST = 2000;

// The timestamp is read before the clock: a frame that is updated in between must not look as if it came from the
// future.
bool IsFresh(const CacheReadAccessInterface& cache, std::uint8_t frameIndex) {
    const std::uint64_t timestamp = cache.GetFrameTimestamp(frameIndex);
    const std::uint64_t now = DateTime::DateTime::GetRealTimeInMilliseconds();
    return timestamp != 0 && now - timestamp <= DeviceCache::DEFAULT_REGISTER_CACHE_TIMEOUT_MS;
}

StatusCode ReadAndBuild(const CacheReadAccessInterface& cache, bool deviceBigEndian, ElementData& element,
                        DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    std::array<std::uint8_t, 256> buffer{};
    const std::uint8_t frameIndex = element.GetFrameIndex();
    const std::uint16_t address = element.GetDeviceRegister();
    const std::uint32_t length =
        cache.ReadFrame(frameIndex, address, element.GetNumberOfRegisters(), buffer.data(), buffer.size(), quality);
    if (quality == DeviceCache::QUALITY_UNINITIALISED || length > buffer.size()) {
        return Status::NOT_AVAILABLE;
    }
    bool invalid = false;
    const bool isBuilt = element.Build(buffer.data(), length, deviceBigEndian, REQUEST, invalid, value, nullptr);
    return isBuilt && !invalid ? Status::SUCCESS : Status::NOT_AVAILABLE;
}

}  // namespace

AttributeConverter::AttributeConverter(
    std::uint16_t registerAddress, std::uint8_t numberOfRegisters, std::shared_ptr<std::vector<std::uint8_t>> bitmask,
    double scaleFactor, std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
    std::uint8_t frameIndex, float offset,
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs, ByteOrderingEnum byteOrdering,
    bool validityCheckEnabled)
    : ElementData(registerAddress, numberOfRegisters, std::move(bitmask), scaleFactor, std::move(validityStatus),
                  logicCode, frameIndex, {}, offset, enumerationPairs, byteOrdering, validityCheckEnabled),
      mEnumOutput(enumerationPairs != nullptr) {}

AttributeConverter::~AttributeConverter() = default;

StatusCode AttributeConverter::GetValueFromElementData(const std::shared_ptr<CacheReadAccessInterface>& cache,
                                                       bool deviceBigEndian, bool ignoreCacheAge, ElementData& element,
                                                       DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    const std::uint8_t frameIndex = element.GetFrameIndex();
    if (!cache || frameIndex == INVALID_FRAME_INDEX) {
        KZM_LOG(ERROR, "[%s] ERROR CacheReadAccess=%p or frame index=%hhu", __func__,
                static_cast<const void*>(cache.get()), frameIndex);
        return Status::INVALID_ARGUMENT;
    }
    auto status = Status::NOT_AVAILABLE;
    try {
        const bool isFresh = IsFresh(*cache, frameIndex);
        if (isFresh || ignoreCacheAge) {
            status = ReadAndBuild(*cache, deviceBigEndian, element, quality, value);
        } else {
            KZM_LOG(INFORMATION, "[%s] Cannot read frame with index=%hhu, cache is out of date", __func__, frameIndex);
        }
    } catch (const std::exception& error) {
        KZM_LOG(ERROR, "[%s] Failed to read frame with index=%hhu: %s", __func__, frameIndex, error.what());
    } catch (...) {
        KZM_LOG(ERROR, "[%s] Failed to read frame with index=%hhu: unknown exception", __func__, frameIndex);
    }
    KZM_LOG_TRACE("[%s] (frame=%hhu, address=%hu, length=%hu) value=%s, quality=%s, status = %s", __func__, frameIndex,
                  element.GetDeviceRegister(), std::uint16_t{element.GetNumberOfRegisters()},
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode AttributeConverter::GetIotValue(const std::string& urn,
                                           const std::shared_ptr<CacheReadAccessInterface>& cache, bool deviceBigEndian,
                                           bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                           nlohmann::json& value) {
    auto status = GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, *this, quality, value);
    const std::uint16_t address = GetDeviceRegister();
    if (mEnumOutput) {
        if (status != Status::SUCCESS) {
            KZM_LOG_AT(status == Status::NOT_AVAILABLE ? Logging::INFORMATION : Logging::ERROR,
                       "[%s] (urn=%s, address=%hu) Failed to get value from element data, status = %s", __func__,
                       urn.c_str(), address, Logging::Text(status).c_str());
            return status;
        }
        if (!value.is_string()) {
            KZM_LOG(ERROR, "[%s] (urn=%s, address=%hu) Expecting a string for %s", __func__, urn.c_str(), address,
                    Logging::Text(value).c_str());
            status = Status::NOT_AVAILABLE;
        } else {
            std::string label = std::move(value.get_ref<std::string&>());
            status = EdmEnumToIotValue::ConvertEdmEnumToIotValue(urn, label, value);
            if (status != Status::SUCCESS) {
                KZM_LOG(ERROR, "[%s] (urn=%s, address=%hu) Failed to convert %s to iot value", __func__, urn.c_str(),
                        address, label.c_str());
                value = std::move(label);
                return status;
            }
        }
    }
    KZM_LOG_TRACE("[%s] (urn=%s, address=%hu) value=%s, quality=%s, status = %s", __func__, urn.c_str(), address,
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode AttributeConverter::GetEdmValue(const std::shared_ptr<CacheReadAccessInterface>& cache, bool deviceBigEndian,
                                           bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                           nlohmann::json& value) {
    auto status = GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, *this, quality, value);
    const std::uint16_t address = GetDeviceRegister();
    if (mEnumOutput) {
        if (status != Status::SUCCESS) {
            KZM_LOG_AT(status == Status::NOT_AVAILABLE ? Logging::INFORMATION : Logging::ERROR,
                       "[%s] (address=%hu) Failed to get value from element data, status = %s", __func__, address,
                       Logging::Text(status).c_str());
            return status;
        }
        if (!value.is_string()) {
            KZM_LOG(ERROR, "[%s] (address=%hu) Expecting a string as value, got:%s", __func__, address,
                    Logging::Text(value).c_str());
            status = Status::NOT_AVAILABLE;
        } else {
            std::string label = std::move(value.get_ref<std::string&>());
            status = EdmEnumToEdmValue::ConvertEdmEnumToEdmValue(label, value);
            if (status != Status::SUCCESS) {
                KZM_LOG(ERROR, "[%s] (address=%hu) Failed to convert %s to edm value", __func__, address,
                        label.c_str());
                value = std::move(label);
                return status;
            }
        }
    }
    KZM_LOG_TRACE("[%s] (address=%hu) value=%s, quality=%s, status = %s", __func__, address,
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode AttributeConverter::ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) {
    if (GetFrameIndex() == INVALID_FRAME_INDEX) {
        return Status::INVALID_ARGUMENT;
    }
    frameIndexes.insert(GetFrameIndex());
    return Status::SUCCESS;
}

StatusCode AttributeConverter::GetClassName(std::string& className) const {
    return Device::CustomMeasureClassName::GetClassNameForLogicCode(GetLogicCode(), className);
}

Device::ModbusMeasurementInformation AttributeConverter::GetModbusMeasurementInformation() const {
    return MeasurementInformationOf(*this);
}

bool AttributeConverter::HasEnumOutput() const {
    return mEnumOutput;
}

std::string AttributeConverter::ToJson() {
    return Logging::Text(ElementData::ToJson());
}

}  // namespace kzm::ModbusDeviceModel::DataModel
