#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "gateway/cache/DeviceFrames.h"

// Registers that are named on the command line rather than by a profile.
namespace kzm::ModbusTool {

// Registers side by side.
struct RegisterRange {
    ModbusDeviceModel::ModbusFunctionCode functionCode;
    std::uint16_t first;
    std::uint16_t last;
};

// The frames that read the ranges, each of as many registers as one request may read, `most` at most, named after what
// it reads first: "holding-0", "holding-125". Throws std::invalid_argument for ranges that overlap and for more than
// 255 frames.
ModbusGateway::DeviceFrames FramesOf(const std::vector<RegisterRange>& ranges, std::uint16_t most = 0xFFFF);

// "--registers": "holding:0-119,input:30000".
void AddRegistersOption(CommandSyntax& command, std::vector<RegisterRange>& ranges);

// "--function": coils, discrete-inputs, holding, input; holding unless given.
void AddFunctionOption(CommandSyntax& command, std::string& function);
ModbusDeviceModel::ModbusFunctionCode FunctionOf(const std::string& option);

// The unit of what a function code reads: "register" or "bit".
const char* UnitOf(ModbusDeviceModel::ModbusFunctionCode functionCode);

}  // namespace kzm::ModbusTool
