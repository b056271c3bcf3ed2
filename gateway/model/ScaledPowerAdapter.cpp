#include "gateway/model/ScaledPowerAdapter.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "DataModel/AttributeConverter.h"
#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/IValueProcesser.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/MeasurementInformationOf.h"
#include "DataModel/StepObserver.h"
#include "Device/CustomMeasureClassName.h"
#include "Support/Status.h"
#include "gateway/chains/ExponentLimit.h"

namespace kzm::ModbusGateway {

using kz::orba::StatusCode;
using ModbusDeviceModel::DataModel::AttributeConverter;
using ModbusDeviceModel::DataModel::ComputedAlarmElement;
using ModbusDeviceModel::DataModel::ExtendedElementData;
using ModbusDeviceModel::DataModel::GetStepObserver;
using ModbusDeviceModel::DataModel::Reason;
using ModbusDeviceModel::DataModel::StepKind;
using ModbusDeviceModel::ServiceImpl::IValueProcesser;
using nlohmann::json;
namespace Status = ModbusDeviceModel::Status;
namespace DeviceCache = ModbusDeviceModel::DeviceCache;

namespace {

bool IsExponent(const json& value) {
    const double number = value.is_number() ? value.get<double>() : NAN;
    return std::trunc(number) == number && std::fabs(number) <= MAX_EXPONENT;
}

// Reads the exponent when the decoding of an element asks for it, with the cache and the flags of the request.
template <typename Read>
class ExponentReader final : public IValueProcesser {
public:
    explicit ExponentReader(Read read) : mRead(std::move(read)) {}

    bool GetValue(const std::string&, json& value) override {
        mQuality = DeviceCache::QUALITY_UNINITIALISED;
        mStatus = mRead(mQuality, value);
        auto reason = mStatus == Status::SUCCESS ? Reason::GOOD : Reason::INPUT_MISSING;
        if (mStatus == Status::SUCCESS && !IsExponent(value)) {
            mStatus = Status::OUT_OF_RANGE;
            reason = Reason::CANNOT_COMPUTE;
        }
        if (reason != Reason::GOOD) {
            Refuse(reason);
        }
        return mStatus == Status::SUCCESS;
    }

    StatusCode GetStatus() const { return mStatus; }
    DeviceCache::_Quality_t GetQuality() const { return mQuality; }

private:
    void Refuse(Reason reason) const {
        if (auto* const observer = GetStepObserver()) {
            observer->See({.kind = StepKind::INPUT, .reason = reason, .status = mStatus, .text = "exponent"});
        }
    }

    Read mRead;
    StatusCode mStatus = Status::SUCCESS;
    DeviceCache::_Quality_t mQuality = DeviceCache::QUALITY_GOOD;
};

// An element for one request, with the value processor that the common way of reading an element has no place for.
class RequestedElement final : public ExtendedElementData {
public:
    RequestedElement(const ExtendedElementData& element, IValueProcesser& valueProcesser)
        : ExtendedElementData(element), mValueProcesser(valueProcesser) {}

    bool Build(unsigned char* buffer, unsigned int length, bool deviceBigEndian, int request, bool& invalid,
               json& value, IValueProcesser*) override {
        return ExtendedElementData::Build(buffer, length, deviceBigEndian, request, invalid, value, &mValueProcesser);
    }

private:
    IValueProcesser& mValueProcesser;
};

}  // namespace

ScaledPowerAdapter::ScaledPowerAdapter(std::shared_ptr<ExtendedElementData> element,
                                       std::shared_ptr<AttributeAdapter> exponent)
    : mElement(std::move(element)), mExponent(std::move(exponent)) {}

StatusCode ScaledPowerAdapter::GetIotValue(const std::string&, const Cache& cache, bool deviceBigEndian,
                                           bool ignoreCacheAge, Quality& quality, json& value) {
    return GetEdmValue(cache, deviceBigEndian, ignoreCacheAge, quality, value);
}

StatusCode ScaledPowerAdapter::GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                           Quality& quality, json& value) {
    ExponentReader reader([&](Quality& exponentQuality, json& exponent) {
        return RunPart(GetStepObserver(), "exponent", mExponent.get(), exponentQuality, &exponent, [&] {
            return mExponent->GetEdmValue(cache, deviceBigEndian, ignoreCacheAge, exponentQuality, exponent);
        });
    });
    RequestedElement element(*mElement, reader);
    const auto status =
        AttributeConverter::GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, element, quality, value);
    quality = ComputedAlarmElement::GetQualityFromOperands(quality, reader.GetQuality());
    return reader.GetStatus() == Status::SUCCESS ? status : reader.GetStatus();
}

StatusCode ScaledPowerAdapter::ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) {
    // A data object adapter would replace the set.
    std::set<std::uint8_t> exponentsFrames;
    const auto status = mExponent->ComputeAndGetFrameIndexes(exponentsFrames);
    frameIndexes.merge(exponentsFrames);
    frameIndexes.insert(mElement->GetFrameIndex());
    return status;
}

StatusCode ScaledPowerAdapter::GetClassName(std::string& className) const {
    return ModbusDeviceModel::Device::CustomMeasureClassName::GetClassNameForLogicCode(mElement->GetLogicCode(),
                                                                                       className);
}

ModbusDeviceModel::Device::ModbusMeasurementInformation ScaledPowerAdapter::GetModbusMeasurementInformation() const {
    return ModbusDeviceModel::DataModel::MeasurementInformationOf(*mElement);
}

}  // namespace kzm::ModbusGateway
