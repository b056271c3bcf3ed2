#pragma once

#include <algorithm>
#include <cstdint>

namespace kzm::ModbusDeviceModel::DataModel {

// The period of an alarm in milliseconds, for an alarm engine that runs every `processingTimeInSeconds`: at least a
// minute, but never more than three runs.
constexpr std::uint64_t PreviousValuePeriod(std::uint16_t processingTimeInSeconds) {
    const std::uint64_t seconds = processingTimeInSeconds;
    return std::min<std::uint64_t>(std::max<std::uint64_t>(seconds * 1000, 60000), seconds * 3000);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
