#pragma once

#include <algorithm>
#include <cstdint>

namespace kzm::ModbusDeviceModel::DataModel {

// The period of an alarm in milliseconds, by how often the alarm engine runs: at least a minute, unless three runs take
// less than that.
constexpr std::uint64_t PreviousValuePeriod(std::uint16_t processingTimeInSeconds) {
    const std::uint64_t seconds = processingTimeInSeconds;
    return std::min<std::uint64_t>(std::max<std::uint64_t>(seconds * 1000, 60000), seconds * 3000);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
