#include "DataModel/AttributeConverter.h"

#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "DataModel/MeasurementInformationOf.h"
#include "DataModel/Observation.h"
#include "DataModel/ValueRequest.h"
#include "DeviceProfile/ClassOfLogicCode.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceCache::CacheReadAccessInterface;
using kz::orba::StatusCode;

namespace {

constexpr const char* LOG_MODULE = "DataModel::AttributeConverter";
constexpr int REQUEST = 2000;

Reason WhyNotFresh(std::uint64_t timestamp, std::uint64_t now) {
    if (timestamp == 0) {
        return Reason::NEVER_RECEIVED;
    }
    return timestamp > now ? Reason::FUTURE_TIMESTAMP : Reason::OUT_OF_DATE;
}

// Whether a frame may be used.
bool CanUseFrame(const CacheReadAccessInterface& cache, std::uint8_t frameIndex, bool ignoreCacheAge,
                 StepObserver* observer) {
    const std::uint64_t timestamp = cache.GetFrameTimestamp(frameIndex);
    const std::uint64_t now = DateTime::DateTime::GetRealTimeInMilliseconds();
    const bool canUse = DeviceCache::IsFresh(timestamp, now) || ignoreCacheAge;
    KZM_TELL(observer, {.kind = StepKind::FRAME,
                        .reason = canUse ? Reason::GOOD : WhyNotFresh(timestamp, now),
                        .applied = !ignoreCacheAge,
                        .number = static_cast<double>(frameIndex),
                        .timestamp = timestamp,
                        .now = now,
                        .limit = DeviceCache::DEFAULT_REGISTER_CACHE_TIMEOUT_MS});
    return canUse;
}

// Bytes of a frame without a time were never received.
void TellReceived(StepObserver* observer, const CacheReadAccessInterface& cache, const ElementData& element,
                  std::span<const std::uint8_t> bytes, DeviceCache::_Quality_t quality) {
    const bool isMissing = quality == DeviceCache::QUALITY_UNINITIALISED;
    const bool isNever = isMissing && cache.GetFrameTimestamp(element.GetFrameIndex()) == 0;
    observer->See({.kind = StepKind::RECEIVED,
                   .reason = isNever ? Reason::NEVER_RECEIVED : ReasonOf(quality),
                   .quality = quality,
                   .bytes = bytes});
}

// An exception that says that something was asked wrongly, as std::stoi does of a pattern, is one of the configuration.
Reason ReasonOf(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
        return Reason::NO_MEMORY;
    }
    return dynamic_cast<const std::logic_error*>(&error) != nullptr ? Reason::MISCONFIGURED : Reason::INTERNAL;
}

StatusCode ReadAndBuild(const CacheReadAccessInterface& cache, bool deviceBigEndian, ElementData& element,
                        StepObserver* observer, DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    std::array<std::uint8_t, 256> buffer{};
    const std::uint8_t frameIndex = element.GetFrameIndex();
    const std::uint16_t address = element.GetDeviceRegister();
    const std::uint32_t length =
        cache.ReadFrame(frameIndex, address, element.GetNumberOfRegisters(), buffer.data(), buffer.size(), quality);
    if (observer != nullptr) [[unlikely]] {
        TellReceived(observer, cache, element, {buffer.data(), std::min<std::size_t>(length, buffer.size())}, quality);
    }
    if (quality == DeviceCache::QUALITY_UNINITIALISED) {
        return Status::NOT_AVAILABLE;
    }
    bool invalid = false;
    if (length > buffer.size()) {
        // The base class refuses the length and logs it; a derived class might read past the buffer.
        element.ElementData::Build(buffer.data(), length, deviceBigEndian, REQUEST, invalid, value, nullptr);
        return Status::NOT_AVAILABLE;
    }
    const bool isBuilt = element.Build(buffer.data(), length, deviceBigEndian, REQUEST, invalid, value, nullptr);
    return isBuilt && !invalid ? Status::SUCCESS : Status::NOT_AVAILABLE;
}

// The form that is asked for, with the words that differ in its log lines.
struct LabelForm {
    const char* operation;
    const char* name;
    const char* noText;
    const std::string* urn;  // null for the device-dictionary form

    std::string Describe(std::uint16_t address) const {
        const std::string place = "address=" + std::to_string(address);
        return urn ? std::string("urn=") + urn->c_str() + ", " + place : place;
    }
};

StatusCode TranslateValue(const LabelForm& form, std::uint16_t address, nlohmann::json& value) {
    std::string label = std::move(value.get_ref<std::string&>());
    const auto status = TranslateLabel(form.urn, label, value);
    KZM_TELL(tObserver, {.kind = StepKind::TRANSLATED,
                         .reason = status == Status::SUCCESS ? Reason::GOOD : Reason::NO_TRANSLATION,
                         .status = status,
                         .text = label,
                         .value = &value});
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "[%s] (%s) Failed to convert %s to %s value", form.operation, form.Describe(address).c_str(),
                label.c_str(), form.name);
        value = std::move(label);
    }
    return status;
}

// Logs the outcome of reading an element and, for an enumeration, replaces the label by its translation.
StatusCode TranslateIfLabel(bool isLabel, const LabelForm& form, StatusCode status, std::uint16_t address,
                            const DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    if (isLabel && status != Status::SUCCESS) {
        KZM_LOG_AT(status == Status::NOT_AVAILABLE ? Logging::INFORMATION : Logging::ERROR,
                   "[%s] (%s) Failed to get value from element data, status = %s", form.operation,
                   form.Describe(address).c_str(), Logging::Text(status).c_str());
        return status;
    }
    if (isLabel && !value.is_string()) {
        KZM_LOG(ERROR, "[%s] (%s) %s%s", form.operation, form.Describe(address).c_str(), form.noText,
                Logging::Text(value).c_str());
        KZM_TELL(tObserver, {.kind = StepKind::TRANSLATED, .reason = Reason::MISCONFIGURED, .value = &value});
        status = Status::NOT_AVAILABLE;
    } else if (isLabel) {
        status = TranslateValue(form, address, value);
        if (status != Status::SUCCESS) {
            return status;
        }
    }
    KZM_LOG_TRACE("[%s] (%s) value=%s, quality=%s, status = %s", form.operation, form.Describe(address).c_str(),
                  Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
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
    StepObserver* const observer = tObserver;
    KZM_TELL(observer, {.kind = StepKind::ELEMENT, .element = &element});
    if (!cache || frameIndex == INVALID_FRAME_INDEX) {
        KZM_TELL(observer, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
        KZM_LOG(ERROR, "[%s] ERROR CacheReadAccess=%p or frame index=%hhu", __func__,
                static_cast<const void*>(cache.get()), frameIndex);
        return Status::INVALID_ARGUMENT;
    }
    auto status = Status::NOT_AVAILABLE;
    try {
        if (CanUseFrame(*cache, frameIndex, ignoreCacheAge, observer)) {
            status = ReadAndBuild(*cache, deviceBigEndian, element, observer, quality, value);
        } else {
            KZM_LOG(INFORMATION, "[%s] Cannot read frame with index=%hhu, cache is out of date", __func__, frameIndex);
        }
    } catch (const std::exception& error) {
        KZM_TELL(observer, {.kind = StepKind::FAILURE, .reason = ReasonOf(error), .text = error.what()});
        KZM_LOG(ERROR, "[%s] Failed to read frame with index=%hhu: %s", __func__, frameIndex, error.what());
    } catch (abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
    } catch (...) {
        KZM_TELL(observer, {.kind = StepKind::FAILURE, .reason = Reason::INTERNAL});
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
    const LabelForm form{__func__, "iot", "Expecting a string for ", &urn};
    const auto status = GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, *this, quality, value);
    return TranslateIfLabel(mEnumOutput, form, status, GetDeviceRegister(), quality, value);
}

StatusCode AttributeConverter::GetEdmValue(const std::shared_ptr<CacheReadAccessInterface>& cache, bool deviceBigEndian,
                                           bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                           nlohmann::json& value) {
    const LabelForm form{__func__, "edm", "Expecting a string as value, got:", nullptr};
    const auto status = GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, *this, quality, value);
    return TranslateIfLabel(mEnumOutput, form, status, GetDeviceRegister(), quality, value);
}

StatusCode AttributeConverter::ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) {
    if (GetFrameIndex() == INVALID_FRAME_INDEX) {
        return Status::INVALID_ARGUMENT;
    }
    frameIndexes.insert(GetFrameIndex());
    return Status::SUCCESS;
}

StatusCode AttributeConverter::GetClassName(std::string& className) const {
    return DeviceProfile::GetClassOfLogicCode(GetLogicCode(), className);
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
