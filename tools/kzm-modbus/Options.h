#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "gateway/modbus/ModbusSettings.h"

// Options that several commands share. What a value must be is checked while the command line is read.
namespace kzm::ModbusTool {

void AddProfileArgument(CommandSyntax& command, std::string& path);
// For commands that can do without: captures describe their frames.
void AddOptionalProfileArgument(CommandSyntax& command, std::string& path);
void AddCaptureOption(CommandSyntax& command, std::string& path);
void AddObjectOption(CommandSyntax& command, std::vector<std::string>& objects);

// "--exact".
void AddExactOption(CommandSyntax& command, bool& exact);

// "--raw".
void AddRawOption(CommandSyntax& command, bool& raw);

// How often something is done.
struct Repetition {
    std::uint64_t count;  // 0: until a signal
    Milliseconds interval{1000};
};
void AddRepetitionOptions(CommandSyntax& command, Repetition& repetition);

// "--tcp" or "--rtu", "--unit" and "--timeout".
void AddConnectionOptions(CommandSyntax& command, ModbusGateway::ModbusSettings& connection);
// "--capture" or the options of AddConnectionOptions; `capture` stays empty for the latter.
void AddSourceOptions(CommandSyntax& command, std::string& capture, ModbusGateway::ModbusSettings& connection);
// The same, but none of them is required; without one, no device is given.
void AddAnySourceOptions(CommandSyntax& command, std::string& capture, ModbusGateway::ModbusSettings& connection);
bool IsDeviceGiven(const ModbusGateway::ModbusSettings& connection);
// The argument CAPTURE or the options of AddConnectionOptions; `capture` stays empty for the latter.
void AddCaptureOrDevice(CommandSyntax& command, std::string& capture, ModbusGateway::ModbusSettings& connection);
// "--listen".
void AddListenOption(CommandSyntax& command, ModbusGateway::TcpEndpoint& endpoint);

// As it is written on the command line, "[::1]:502" with brackets.
std::string ToText(const ModbusGateway::TcpEndpoint& endpoint);
std::string ToText(const ModbusGateway::ModbusSettings& connection);

}  // namespace kzm::ModbusTool
