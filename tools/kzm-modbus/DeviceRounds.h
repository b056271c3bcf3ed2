#pragma once

#include <functional>

#include "Options.h"
#include "gateway/cache/DeviceFrames.h"
#include "gateway/modbus/ModbusReader.h"

namespace kzm::ModbusTool {

using OnRound = std::function<void(const ModbusGateway::ModbusReader::Round& round)>;

// Reads a device into the cache, round by round, and passes each round on. Ends after the count, when standard output
// is closed, or with a signal; a round that the signal interrupted is dropped. Throws Failure with NOT_REACHED when the
// count was reached without a single frame.
void ReadRounds(const ModbusGateway::ModbusSettings& settings, const Repetition& repetition,
                const ModbusGateway::DeviceFrames& device, ModbusGateway::RegisterCache& cache, const OnRound& onRound);

}  // namespace kzm::ModbusTool
