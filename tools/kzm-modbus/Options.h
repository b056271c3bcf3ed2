#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "gateway/modbus/ModbusSettings.h"

namespace CLI {
class App;
}

// Options that several commands share. What a value must be is checked while the command line is read.
namespace kzm::ModbusTool {

using Milliseconds = std::chrono::milliseconds;

void AddProfileArgument(CLI::App& command, std::string& path);
void AddCaptureOption(CLI::App& command, std::string& path);
void AddObjectOption(CLI::App& command, std::vector<std::string>& objects);

// How often something is done.
struct Repetition {
    std::uint64_t count;  // 0: until a signal
    Milliseconds interval{1000};
};
void AddRepetitionOptions(CLI::App& command, Repetition& repetition);

// "--tcp" or "--rtu", "--unit" and "--timeout".
void AddConnectionOptions(CLI::App& command, ModbusGateway::ModbusSettings& connection);
// "--capture" or the options of AddConnectionOptions; `capture` stays empty for the latter.
void AddSourceOptions(CLI::App& command, std::string& capture, ModbusGateway::ModbusSettings& connection);
// "--listen".
void AddListenOption(CLI::App& command, ModbusGateway::TcpEndpoint& endpoint);

// As it is written on the command line, "[::1]:502" with brackets.
std::string ToText(const ModbusGateway::TcpEndpoint& endpoint);
std::string ToText(const ModbusGateway::ModbusSettings& connection);

}  // namespace kzm::ModbusTool
