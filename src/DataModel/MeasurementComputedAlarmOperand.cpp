#include "DataModel/MeasurementComputedAlarmOperand.h"

#include <utility>

#include "DataModel/AttributeConverter.h"
#include "DataModel/Observation.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

// The source as one kind; null if it is of another kind or there is none.
template <typename Kind>
Kind* SourceAs(const MeasurementComputedAlarmOperand::Source& source) {
    const auto* pointer = std::get_if<std::shared_ptr<Kind>>(&source);
    return pointer ? pointer->get() : nullptr;
}

}  // namespace

MeasurementComputedAlarmOperand::MeasurementComputedAlarmOperand(std::string name, Source source)
    : ComputedAlarmOperand(std::move(name), ComputedAlarmOperandType::MEASUREMENT), mSource(std::move(source)) {
    if (const auto* element = SourceAs<ElementData>(mSource)) {
        if (element->GetFrameIndex() != ElementData::INVALID_FRAME_INDEX) {
            mFrameIndexes.insert(element->GetFrameIndex());
        }
    } else if (auto* adapter = SourceAs<DataObjectAdapter>(mSource)) {
        if (adapter->ComputeAndGetFrameIndexes(mFrameIndexes) != Status::SUCCESS) {
            // One of its roles has no frame; the value may still have one.
            mFrameIndexes = adapter->GetFrameIndexes();
        }
    }
}

MeasurementComputedAlarmOperand::~MeasurementComputedAlarmOperand() = default;

std::optional<std::set<std::uint8_t>> MeasurementComputedAlarmOperand::GetFrameIndexes() const {
    return mFrameIndexes;
}

kz::orba::StatusCode MeasurementComputedAlarmOperand::GetValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian, bool ignoreCacheAge,
    const PreviousMeasurements&, const std::string&, DeviceCache::_Quality_t& quality, nlohmann::json& value) const {
    if (auto* element = SourceAs<ElementData>(mSource)) {
        return AttributeConverter::GetValueFromElementData(cache, deviceBigEndian, ignoreCacheAge, *element, quality,
                                                           value);
    }
    if (auto* adapter = SourceAs<DataObjectAdapter>(mSource)) {
        return adapter->GetEdmValue(cache, deviceBigEndian, ignoreCacheAge, quality, value);
    }
    KZM_TELL(tObserver, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
    return Status::NOT_AVAILABLE;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
