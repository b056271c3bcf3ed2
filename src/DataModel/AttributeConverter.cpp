#include "DataModel/AttributeConverter.h"

#include <cxxabi.h>

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "DataModel/MeasurementInformationOf.h"
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

bool IsFrameFresh(const CacheReadAccessInterface& cache, std::uint8_t frameIndex) {
    const std::uint64_t timestamp = cache.GetFrameTimestamp(frameIndex);
    return DeviceCache::IsFresh(timestamp, DateTime::DateTime::GetRealTimeInMilliseconds());
}

StatusCode ReadAndBuild(const CacheReadAccessInterface& cache, bool deviceBigEndian, ElementData& element,
                        DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    std::array<std::uint8_t, 256> buffer{};
    const std::uint8_t frameIndex = element.GetFrameIndex();
    const std::uint16_t address = element.GetDeviceRegister();
    const std::uint32_t length =
        cache.ReadFrame(frameIndex, address, element.GetNumberOfRegisters(), buffer.data(), buffer.size(), quality);
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
    if (!cache || frameIndex == INVALID_FRAME_INDEX) {
        KZM_LOG(ERROR, "[%s] ERROR CacheReadAccess=%p or frame index=%hhu", __func__,
                static_cast<const void*>(cache.get()), frameIndex);
        return Status::INVALID_ARGUMENT;
    }
    auto status = Status::NOT_AVAILABLE;
    try {
        const bool isFresh = IsFrameFresh(*cache, frameIndex);
        if (isFresh || ignoreCacheAge) {
            status = ReadAndBuild(*cache, deviceBigEndian, element, quality, value);
        } else {
            KZM_LOG(INFORMATION, "[%s] Cannot read frame with index=%hhu, cache is out of date", __func__, frameIndex);
        }
    } catch (const std::exception& error) {
        KZM_LOG(ERROR, "[%s] Failed to read frame with index=%hhu: %s", __func__, frameIndex, error.what());
    } catch (abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
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
