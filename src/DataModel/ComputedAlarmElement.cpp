#include "DataModel/ComputedAlarmElement.h"

#include <utility>

#include "Support/FlatObject.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceCache::_Quality_t;
using DeviceCache::QUALITY_BAD;
using DeviceCache::QUALITY_GOOD;
using DeviceCache::QUALITY_QUESTIONABLE;
using DeviceCache::QUALITY_UNINITIALISED;
using kz::orba::StatusCode;
using nlohmann::json;
using Type = ComputedAlarmOperandType;

namespace {

constexpr const char* LOG_MODULE = "DataModel::ComputedAlarmElement";
constexpr const char* BUILD = "BuildVortaObjectValue";

}  // namespace

// What one operand gave.
struct ComputedAlarmElement::Reading {
    Type type;
    _Quality_t quality = QUALITY_BAD;
    json value = nullptr;
    StatusCode status = Status::INVALID_ARGUMENT;

    bool IsBadOrMissing() const { return IsOperandQualityBadOrValueMissing(quality, status); }
};

ComputedAlarmElement::ComputedAlarmElement(std::string name, bool hasChangedAlarm, std::string priority,
                                           std::string description, std::string type,
                                           std::shared_ptr<ProcessingChain> processingChain,
                                           std::shared_ptr<ComputedAlarmOperand> leftOperand,
                                           std::shared_ptr<ComputedAlarmOperand> rightOperand)
    : mName(std::move(name)),
      mHasChangedAlarm(hasChangedAlarm),
      mPriority(std::move(priority)),
      mDescription(std::move(description)),
      mType(std::move(type)),
      mProcessingChain(std::move(processingChain)),
      mLeftOperand(std::move(leftOperand)),
      mRightOperand(std::move(rightOperand)) {}

StatusCode ComputedAlarmElement::BuildVortaObjectValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                                       const PreviousMeasurements& previous, _Quality_t& quality,
                                                       json& value) {
    quality = QUALITY_BAD;
    if (!mLeftOperand || !mRightOperand) {
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value", BUILD);
        return Status::INVALID_ARGUMENT;
    }
    const auto read = [&](const ComputedAlarmOperand& operand) {
        Reading reading{.type = operand.GetType()};
        reading.status =
            operand.GetValue(cache, deviceBigEndian, ignoreCacheAge, previous, mName, reading.quality, reading.value);
        return reading;
    };
    const Reading left = read(*mLeftOperand);
    KZM_LOG(INFORMATION, "%s: LeftOperand->GetValue() -> (type=%d, quality=%d, statusCode=%s)", BUILD,
            static_cast<int>(left.type), static_cast<int>(left.quality), Logging::Text(left.status).c_str());
    const Reading right = read(*mRightOperand);
    KZM_LOG(INFORMATION, "%s: RightOperand->GetValue() -> (type=%d, quality=%d, statusCode=%s)", BUILD,
            static_cast<int>(right.type), static_cast<int>(right.quality), Logging::Text(right.status).c_str());
    const auto status = Evaluate(left, right, quality, value);
    UpdatePreviousValues(left.value, left.quality, left.status, right.value, right.quality, right.status, previous);
    return status;
}

StatusCode ComputedAlarmElement::Evaluate(const Reading& left, const Reading& right, _Quality_t& quality,
                                          json& value) const {
    for (const Reading* reading : {&left, &right}) {
        if (reading->type == Type::MEASUREMENT && reading->IsBadOrMissing()) {
            return Status::NOT_AVAILABLE;
        }
    }
    // Without a usable previous value, as at the first evaluation, nothing has changed.
    for (const Reading* reading : {&left, &right}) {
        if (reading->type == Type::PREVIOUS_MEASUREMENT && reading->IsBadOrMissing()) {
            value = "Inactive";
            return Status::SUCCESS;
        }
    }
    if (left.status != Status::SUCCESS || right.status != Status::SUCCESS || !mProcessingChain) {
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value", BUILD);
        return Status::INVALID_ARGUMENT;
    }
    return Compare(left, right, quality, value);
}

StatusCode ComputedAlarmElement::Compare(const Reading& left, const Reading& right, _Quality_t& quality,
                                         json& value) const {
    FlatObject operands;
    json& parameters = operands.Get();
    parameters[mLeftOperand->GetName()] = left.value;
    parameters[mRightOperand->GetName()] = right.value;
    json result;
    const auto status = mProcessingChain->Execute(parameters, result);
    if (status == Status::SUCCESS && result.is_boolean()) {
        value = result.get<bool>() ? "Active" : "Inactive";
        quality = GetQualityFromOperands(left.quality, right.quality);
    } else {
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value, status code is: %s", BUILD,
                Logging::Text(status).c_str());
    }
    return status;
}

void ComputedAlarmElement::UpdatePreviousValues(const json& leftValue, const _Quality_t& leftQuality,
                                                const StatusCode& leftStatus, const json& rightValue,
                                                const _Quality_t& rightQuality, const StatusCode& rightStatus,
                                                const PreviousMeasurements& previous) const {
    if (!previous) {
        KZM_LOG(ERROR, "%s: nullptr error", __func__);
        return;
    }
    KZM_LOG(INFORMATION, "%s: Updating previous values", __func__);
    if (!mLeftOperand || !mRightOperand) {
        return;
    }
    const std::uint64_t now = DateTime::DateTime::GetRealTimeInMilliseconds();
    const Type left = mLeftOperand->GetType();
    const Type right = mRightOperand->GetType();
    if (left == Type::PREVIOUS_MEASUREMENT && right == Type::MEASUREMENT && rightStatus == Status::SUCCESS) {
        KeepValue(*mLeftOperand, rightValue, rightQuality, now, previous);
    }
    if (right == Type::PREVIOUS_MEASUREMENT && left == Type::MEASUREMENT && leftStatus == Status::SUCCESS) {
        KeepValue(*mRightOperand, leftValue, leftQuality, now, previous);
    }
}

void ComputedAlarmElement::KeepValue(const ComputedAlarmOperand& previousOperand, const json& value, _Quality_t quality,
                                     std::uint64_t now, const PreviousMeasurements& previous) const {
    const std::string key = mName + previousOperand.GetPreviousValueName().value_or("");
    (*previous)[key] = {value, quality, now};
    KZM_LOG(INFORMATION, "%s: Updated previous value for %s", "UpdatePreviousValues", key.c_str());
}

std::set<std::uint8_t> ComputedAlarmElement::GetFrameIndexes() {
    std::set<std::uint8_t> frameIndexes;
    for (const auto& operand : {mLeftOperand, mRightOperand}) {
        if (operand) {
            frameIndexes.merge(operand->GetFrameIndexes().value_or(std::set<std::uint8_t>{}));
        }
    }
    return frameIndexes;
}

_Quality_t ComputedAlarmElement::GetQualityFromOperands(const _Quality_t& left, const _Quality_t& right) {
    if (left == QUALITY_BAD || right == QUALITY_UNINITIALISED || right == QUALITY_BAD ||
        left == QUALITY_UNINITIALISED) {
        return QUALITY_BAD;
    }
    if (left != QUALITY_QUESTIONABLE && right != QUALITY_QUESTIONABLE) {
        return left == QUALITY_GOOD && right == QUALITY_GOOD ? QUALITY_GOOD : QUALITY_BAD;
    }
    return QUALITY_QUESTIONABLE;
}

bool ComputedAlarmElement::IsOperandQualityBadOrValueMissing(const _Quality_t& quality, const StatusCode& status) {
    return quality == QUALITY_BAD || status == Status::NOT_AVAILABLE;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
