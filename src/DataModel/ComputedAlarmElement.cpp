#include "DataModel/ComputedAlarmElement.h"

#include <utility>

#include "DataModel/Observation.h"
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

// An operand and what it gave.
struct Reading {
    const ComputedAlarmOperand& operand;
    _Quality_t quality = QUALITY_BAD;
    json value = nullptr;
    StatusCode status = Status::INVALID_ARGUMENT;

    bool IsUnusable(Type type) const {
        return operand.GetType() == type && ComputedAlarmElement::IsOperandQualityBadOrValueMissing(quality, status);
    }
};

// An operand that cannot be used; why is told by the operand.
void TellInput(const Reading& reading) {
    KZM_TELL(tObserver, {.kind = StepKind::INPUT,
                         .reason = Reason::INPUT_MISSING,
                         .status = reading.status,
                         .text = reading.operand.GetName()});
}

void TellMissingPart() {
    KZM_TELL(tObserver, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
}

StatusCode Compare(const Reading& left, const Reading& right, const ProcessingChain& chain, _Quality_t& quality,
                   json& value) {
    FlatObject operands;
    json& parameters = operands.Get();
    parameters[left.operand.GetName()] = left.value;
    parameters[right.operand.GetName()] = right.value;
    json result;
    const auto status = chain.Execute(parameters, result);
    KZM_TELL(tObserver, {.kind = StepKind::PARAMETERS, .value = &parameters});
    KZM_TELL(tObserver,
             {.kind = StepKind::RESULT,
              .reason = status == Status::SUCCESS && result.is_boolean() ? Reason::GOOD : Reason::CANNOT_COMPUTE,
              .status = status,
              .value = &result});
    if (status == Status::SUCCESS && result.is_boolean()) {
        value = result.get<bool>() ? "Active" : "Inactive";
        quality = ComputedAlarmElement::GetQualityFromOperands(left.quality, right.quality);
    } else {
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value, status code is: %s", BUILD,
                Logging::Text(status).c_str());
    }
    return status;
}

StatusCode Evaluate(const Reading& left, const Reading& right, const ProcessingChain* chain, _Quality_t& quality,
                    json& value) {
    if (left.IsUnusable(Type::MEASUREMENT) || right.IsUnusable(Type::MEASUREMENT)) {
        TellInput(left.IsUnusable(Type::MEASUREMENT) ? left : right);
        return Status::NOT_AVAILABLE;
    }
    // Without a usable previous value, for example at the first evaluation, nothing has changed.
    if (left.IsUnusable(Type::PREVIOUS_MEASUREMENT) || right.IsUnusable(Type::PREVIOUS_MEASUREMENT)) {
        TellInput(left.IsUnusable(Type::PREVIOUS_MEASUREMENT) ? left : right);
        value = "Inactive";
        return Status::SUCCESS;
    }
    if (left.status != Status::SUCCESS || right.status != Status::SUCCESS || chain == nullptr) {
        if (left.status != Status::SUCCESS || right.status != Status::SUCCESS) {
            TellInput(left.status != Status::SUCCESS ? left : right);
        } else {
            TellMissingPart();
        }
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value", BUILD);
        return Status::INVALID_ARGUMENT;
    }
    return Compare(left, right, *chain, quality, value);
}

}  // namespace

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
    KZM_TELL(tObserver, {.kind = StepKind::ALARM, .text = mName});
    if (!mLeftOperand || !mRightOperand) {
        TellMissingPart();
        KZM_LOG(ERROR, "%s: Failed to get computed alarm value", BUILD);
        return Status::INVALID_ARGUMENT;
    }
    const auto read = [&](const char* side, const ComputedAlarmOperand& operand) {
        Reading reading{operand};
        reading.status = RunPart(tObserver, operand.GetName(), &operand, reading.quality, &reading.value, [&] {
            return operand.GetValue(cache, deviceBigEndian, ignoreCacheAge, previous, mName, reading.quality,
                                    reading.value);
        });
        KZM_LOG(INFORMATION, "%s: %sOperand->GetValue() -> (type=%d, quality=%d, statusCode=%s)", BUILD, side,
                static_cast<int>(operand.GetType()), static_cast<int>(reading.quality),
                Logging::Text(reading.status).c_str());
        return reading;
    };
    const Reading left = read("Left", *mLeftOperand);
    const Reading right = read("Right", *mRightOperand);
    const auto status = Evaluate(left, right, mProcessingChain.get(), quality, value);
    KZM_TELL(tObserver, {.kind = StepKind::VALUE, .quality = quality, .status = status, .value = &value});
    UpdatePreviousValues(left.value, left.quality, left.status, right.value, right.quality, right.status, previous);
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
    const auto keep = [&](const ComputedAlarmOperand& operand, const json& value, _Quality_t quality) {
        const std::string key = mName + operand.GetPreviousValueName().value_or("");
        (*previous)[key] = {value, quality, now};
        KZM_LOG(INFORMATION, "%s: Updated previous value for %s", "UpdatePreviousValues", key.c_str());
    };
    const Type left = mLeftOperand->GetType();
    const Type right = mRightOperand->GetType();
    if (left == Type::PREVIOUS_MEASUREMENT && right == Type::MEASUREMENT && rightStatus == Status::SUCCESS) {
        keep(*mLeftOperand, rightValue, rightQuality);
    }
    if (right == Type::PREVIOUS_MEASUREMENT && left == Type::MEASUREMENT && leftStatus == Status::SUCCESS) {
        keep(*mRightOperand, leftValue, leftQuality);
    }
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
