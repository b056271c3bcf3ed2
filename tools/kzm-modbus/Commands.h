#pragma once

#include "CommandLine.h"

namespace kzm::ModbusTool {

// The commands in the order of --help: each row is the function that adds one, in a file of its name.
// clang-format off
#define KZM_COMMANDS(ROW)       \
    ROW(AddCheckCommand)        \
    ROW(AddShowCommand)         \
    ROW(AddExplainCommand)      \
    ROW(AddPollCommand)         \
    ROW(AddReadCommand)         \
    ROW(AddProbeCommand)        \
    ROW(AddCaptureCommand)      \
    ROW(AddSimulateCommand)     \
    ROW(AddAlarmsCommand)       \
    ROW(AddWriteCommand)        \
    ROW(AddGuessCommand)        \
    ROW(AddDictionaryCommand)
// clang-format on

#define KZM_DECLARE_COMMAND(function) void function(CommandLine& line);
KZM_COMMANDS(KZM_DECLARE_COMMAND)
#undef KZM_DECLARE_COMMAND

}  // namespace kzm::ModbusTool
