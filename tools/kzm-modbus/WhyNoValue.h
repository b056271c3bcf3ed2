#pragma once

#include <string>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// Why an adapter gives no value: the status of the value itself, made more precise by what the cache holds of the
// adapter's frames. Asks the adapter again.
std::string WhyNoValue(const ModbusGateway::LoadedProfile& profile,
                       ModbusDeviceModel::DataModel::VortaObjectAdapter& adapter, const Cache& cache);

// Why a cached frame cannot be used: it was never received, or is out of date. Empty if it can.
std::string WhyFrameCannotBeUsed(const ModbusGateway::LoadedProfile& profile, std::uint8_t frameIndex,
                                 const ModbusGateway::RegisterCache& cache);

}  // namespace kzm::ModbusTool
