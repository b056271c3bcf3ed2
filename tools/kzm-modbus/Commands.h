#pragma once

#include <functional>

#include "ExitStatus.h"

namespace CLI {
class App;
}

namespace kzm::ModbusTool {

// What is left to do once the command line has been read.
using Command = std::function<ExitStatus()>;

// Each adds one command to the program, which puts what it does into `command` when the command line names it.
void AddCheckCommand(CLI::App& app, Command& command);
void AddShowCommand(CLI::App& app, Command& command);
void AddPollCommand(CLI::App& app, Command& command);
void AddCaptureCommand(CLI::App& app, Command& command);
void AddSimulateCommand(CLI::App& app, Command& command);
void AddAlarmsCommand(CLI::App& app, Command& command);
void AddWriteCommand(CLI::App& app, Command& command);
void AddDictionaryCommand(CLI::App& app, Command& command);

}  // namespace kzm::ModbusTool
