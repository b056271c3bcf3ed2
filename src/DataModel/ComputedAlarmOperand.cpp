#include "DataModel/ComputedAlarmOperand.h"

#include <utility>

namespace kzm::ModbusDeviceModel::DataModel {

ComputedAlarmOperand::ComputedAlarmOperand(std::string name, ComputedAlarmOperandType type)
    : mName(std::move(name)), mType(type) {}

ComputedAlarmOperand::~ComputedAlarmOperand() = default;

std::optional<std::set<std::uint8_t>> ComputedAlarmOperand::GetFrameIndexes() const {
    return std::nullopt;
}

std::optional<std::string> ComputedAlarmOperand::GetPreviousValueName() const {
    return std::nullopt;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
