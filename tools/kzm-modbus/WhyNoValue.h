#pragma once

#include <string>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// In words, why an adapter gives no value: the status of the value itself, told more exactly by what the cache holds of
// the adapter's frames. Asks the adapter again.
std::string WhyNoValue(const ModbusGateway::LoadedProfile& profile,
                       ModbusDeviceModel::DataModel::VortaObjectAdapter& adapter, const Cache& cache);

}  // namespace kzm::ModbusTool
