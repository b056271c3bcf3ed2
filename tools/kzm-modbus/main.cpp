#include <iostream>

#include "Commands.h"
#include "Text.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusTool {
namespace {

using Log::OrbaLogLevel;
using Log::RootLogger;

// A level's name or number; Parse has refused everything else.
OrbaLogLevel LevelOf(const std::string& text) {
    static const std::map<std::string, OrbaLogLevel> LEVELS{{"error", OrbaLogLevel::ERROR},
                                                            {"warning", OrbaLogLevel::WARNING},
                                                            {"information", OrbaLogLevel::INFORMATION},
                                                            {"trace", OrbaLogLevel::TRACE}};
    const auto named = LEVELS.find(text);
    return named != LEVELS.end() ? named->second : static_cast<OrbaLogLevel>(std::stoi(text));
}

ExitStatus Complain(const std::string& message, ExitStatus status) {
    std::cerr << "kzm-modbus: " << Printable(message) << std::endl;
    return status;
}

ExitStatus RunCommand(int argc, char** argv) {
    CommandLine line;
    std::string level;
    line.GetOptionsOfAll().AddChoice(
        {"--log", "LEVEL", "Show the library's log lines up to a level"},
        {"error", "warning", "information", "trace", "0", "1", "2", "3", "4", "5", "6", "7"}, level);
#define KZM_ADD_COMMAND(function) function(line);
    KZM_COMMANDS(KZM_ADD_COMMAND)
#undef KZM_ADD_COMMAND
    const Command command = line.Parse(argc, argv);
    RootLogger::GetInstance().SetLevel(level.empty() ? OrbaLogLevel::NONE : LevelOf(level));
    const ExitStatus status = command ? command() : ExitStatus::OK;
    return std::cout.flush() ? status : Complain("cannot write to standard output", ExitStatus::FILE_ERROR);
}

ExitStatus Run(int argc, char** argv) try { return RunCommand(argc, argv); } catch (const Failure& failure) {
    return Complain(failure.what(), failure.GetStatus());
} catch (const std::exception& error) {
    return Complain(std::string("internal error: ") + error.what(), ExitStatus::INTERNAL_ERROR);
}

}  // namespace
}  // namespace kzm::ModbusTool

int main(int argc, char** argv) {
    return static_cast<int>(kzm::ModbusTool::Run(argc, argv));
}
