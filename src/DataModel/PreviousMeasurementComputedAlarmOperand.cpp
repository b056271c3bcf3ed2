#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"

#include <utility>

#include "DataModel/Observation.h"
#include "DataModel/PreviousValuePeriod.h"
#include "Support/Status.h"
#include "kzm/DataHandler/Alarm/Engine.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

// The age in milliseconds past which a record is Bad.
std::uint64_t GreatestAge() {
    const std::uint64_t period = PreviousValuePeriod(DataHandler::Alarm::Engine::EXPECTED_ALARM_PROCESSING_TIME_SEC);
    return period + period / 2;
}

}  // namespace

PreviousMeasurementComputedAlarmOperand::PreviousMeasurementComputedAlarmOperand(std::string name,
                                                                                 std::string previousValueName)
    : ComputedAlarmOperand(std::move(name), ComputedAlarmOperandType::PREVIOUS_MEASUREMENT),
      mPreviousValueName(std::move(previousValueName)) {}

PreviousMeasurementComputedAlarmOperand::~PreviousMeasurementComputedAlarmOperand() = default;

std::optional<std::string> PreviousMeasurementComputedAlarmOperand::GetPreviousValueName() const {
    return mPreviousValueName;
}

kz::orba::StatusCode PreviousMeasurementComputedAlarmOperand::GetValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>&, bool, bool, const PreviousMeasurements& previous,
    const std::string& alarmName, DeviceCache::_Quality_t& quality, nlohmann::json& value) const {
    const auto found =
        previous ? previous->find(alarmName + mPreviousValueName) : PreviousMeasurements::element_type::iterator();
    if (!previous || found == previous->end()) {
        KZM_TELL(tObserver, {.kind = StepKind::PREVIOUS, .reason = Reason::NEVER_RECEIVED, .text = mPreviousValueName});
        return Status::NOT_AVAILABLE;
    }
    ComputedAlarmPreviousMeasurement record = found->second;
    UpdatePreviousValueQuality(record);
    if (StepObserver* const observer = tObserver) [[unlikely]] {
        const bool isOld = record.quality != found->second.quality;
        observer->See({.kind = StepKind::PREVIOUS,
                       .reason = isOld ? Reason::OUT_OF_DATE : ReasonOf(record.quality),
                       .quality = record.quality,
                       .text = mPreviousValueName,
                       .value = &record.value,
                       .timestamp = record.timestamp,
                       .now = DateTime::DateTime::GetRealTimeInMilliseconds(),
                       .limit = GreatestAge()});
    }
    value = std::move(record.value);
    quality = record.quality;
    return Status::SUCCESS;
}

void PreviousMeasurementComputedAlarmOperand::UpdatePreviousValueQuality(
    ComputedAlarmPreviousMeasurement& record) const {
    const std::uint64_t limit = DateTime::DateTime::GetRealTimeInMilliseconds() - GreatestAge();
    if (record.timestamp < limit) {
        record.quality = DeviceCache::QUALITY_BAD;
    }
}

}  // namespace kzm::ModbusDeviceModel::DataModel
