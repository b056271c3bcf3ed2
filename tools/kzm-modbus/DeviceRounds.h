#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ExitStatus.h"
#include "Options.h"
#include "gateway/modbus/ModbusReader.h"
#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusTool {

using OnRound = std::function<void(const ModbusGateway::ModbusReader::Round& round)>;

// Reads a device round by round into the cache and tells each. Ends after the count, with a stop signal, or when
// standard output is closed. The result is NOT_REACHED when the count was reached without a single frame.
ExitStatus ReadRounds(const ModbusGateway::ModbusSettings& connection, const Repetition& repetition,
                      const ModbusGateway::LoadedProfile& profile, ModbusGateway::RegisterCache& cache,
                      const OnRound& onRound);

// For a connection that cannot be, as ModbusReader and ModbusConnection call it.
Failure NoSuchLine(const ModbusGateway::ModbusSettings& connection);

// What went wrong in a round, a line for each: "frame basic: Illegal data address".
std::vector<std::string> DescribeErrors(const ModbusGateway::ModbusReader::Round& round,
                                        const ModbusGateway::LoadedProfile& profile);

// Writes what goes wrong to standard error, once per change.
class ErrorReport {
public:
    void Report(const std::vector<std::string>& errors);

private:
    std::vector<std::string> mLast;
};

}  // namespace kzm::ModbusTool
