#pragma once

#include <string>
#include <vector>

#include "ExitStatus.h"
#include "gateway/cache/DeviceFrames.h"
#include "gateway/modbus/ModbusReader.h"

namespace kzm::ModbusTool {

// For settings that ModbusReader and ModbusConnection refuse.
Failure ImpossibleSettings(const ModbusGateway::ModbusSettings& settings);

// What went wrong in a round, a line for each: "frame basic: Illegal data address".
std::vector<std::string> DescribeErrors(const ModbusGateway::ModbusReader::Round& round,
                                        const ModbusGateway::DeviceFrames& device);

// Writes errors to standard error, only when they differ from those of the round before.
class ErrorReport {
public:
    void Report(const std::vector<std::string>& errors);

private:
    std::vector<std::string> mLast;
};

}  // namespace kzm::ModbusTool
