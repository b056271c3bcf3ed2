#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"

#include <utility>

#include "DataModel/PreviousValuePeriod.h"
#include "Support/Status.h"
#include "kzm/DataHandler/Alarm/Engine.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel::DataModel {

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
    if (!previous) {
        return Status::NOT_AVAILABLE;
    }
    const auto found = previous->find(alarmName + mPreviousValueName);
    if (found == previous->end()) {
        return Status::NOT_AVAILABLE;
    }
    ComputedAlarmPreviousMeasurement record = found->second;
    UpdatePreviousValueQuality(record);
    value = std::move(record.value);
    quality = record.quality;
    return Status::SUCCESS;
}

void PreviousMeasurementComputedAlarmOperand::UpdatePreviousValueQuality(
    ComputedAlarmPreviousMeasurement& record) const {
    const std::uint64_t period = PreviousValuePeriod(DataHandler::Alarm::Engine::EXPECTED_ALARM_PROCESSING_TIME_SEC);
    const std::uint64_t limit = DateTime::DateTime::GetRealTimeInMilliseconds() - (period + period / 2);
    if (record.timestamp < limit) {
        record.quality = DeviceCache::QUALITY_BAD;
    }
}

}  // namespace kzm::ModbusDeviceModel::DataModel
