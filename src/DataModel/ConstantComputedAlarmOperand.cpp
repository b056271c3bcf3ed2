#include "DataModel/ConstantComputedAlarmOperand.h"

#include <utility>

#include "DataModel/Observation.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DataModel {

ConstantComputedAlarmOperand::ConstantComputedAlarmOperand(std::string name, nlohmann::json value)
    : ComputedAlarmOperand(std::move(name), ComputedAlarmOperandType::CONSTANT), mValue(std::move(value)) {}

ConstantComputedAlarmOperand::~ConstantComputedAlarmOperand() = default;

kz::orba::StatusCode ConstantComputedAlarmOperand::GetValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>&, bool, bool, const PreviousMeasurements&,
    const std::string&, DeviceCache::_Quality_t& quality, nlohmann::json& value) const {
    quality = DeviceCache::QUALITY_GOOD;
    value = mValue;
    KZM_TELL(tObserver, {.kind = StepKind::CONSTANT, .value = &value});
    return Status::SUCCESS;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
