#pragma once

#include <string>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// In words, why an adapter gives no value: the status of the value itself, told more exactly by what the cache holds of
// the adapter's frames. Asks the adapter again.
std::string WhyNoValue(const ModbusGateway::LoadedProfile& profile,
                       ModbusDeviceModel::DataModel::VortaObjectAdapter& adapter, const Cache& cache);

// In words, why what the cache holds of a frame counts for nothing: never received or out of date. Empty where it
// counts.
std::string WhyFrameCannotBeUsed(const ModbusGateway::LoadedProfile& profile, std::uint8_t frameIndex,
                                 const ModbusGateway::RegisterCache& cache);

}  // namespace kzm::ModbusTool
