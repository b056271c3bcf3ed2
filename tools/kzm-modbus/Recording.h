#pragma once

#include "Options.h"
#include "gateway/capture/Capture.h"

namespace kzm::ModbusTool {

// Reads a device round by round into a capture, a snapshot for each round that has a frame; errors are reported on
// standard error as they come and go. No snapshots if it was interrupted before. Throws what ReadRounds throws.
ModbusGateway::Capture Record(const ModbusGateway::ModbusSettings& connection, const Repetition& repetition,
                              const ModbusGateway::DeviceFrames& device);

}  // namespace kzm::ModbusTool
