#include <CLI/CLI.hpp>
#include <iostream>

#include "Commands.h"
#include "Text.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusTool {
namespace {

using Log::OrbaLogLevel;
using Log::RootLogger;

void AddLogOption(CLI::App& app) {
    static const std::map<std::string, OrbaLogLevel> LEVELS{{"error", OrbaLogLevel::ERROR},
                                                            {"warning", OrbaLogLevel::WARNING},
                                                            {"information", OrbaLogLevel::INFORMATION},
                                                            {"trace", OrbaLogLevel::TRACE}};
    RootLogger::GetInstance().SetLevel(OrbaLogLevel::NONE);
    const auto setLevel = [](const std::string& text) {
        const auto named = LEVELS.find(text);
        if (named != LEVELS.end()) {
            RootLogger::GetInstance().SetLevel(named->second);
        } else if (text.size() == 1 && text[0] >= '0' && text[0] <= '7') {
            RootLogger::GetInstance().SetLevel(static_cast<OrbaLogLevel>(text[0] - '0'));
        } else {
            throw CLI::ValidationError("--log",
                                       "\"" + text + "\" is none of error, warning, information, trace, 0 to 7");
        }
    };
    app.add_option_function<std::string>(
           "--log", setLevel, "Show the library's log lines up to a level: error, warning, information, trace, 0 to 7")
        ->type_name("LEVEL");
}

void Configure(CLI::App& app, Command& command) {
    app.set_version_flag("--version", "kzm-modbus " KZM_VERSION);
    app.set_help_flag("-h,--help", "Show this help");
    app.require_subcommand(0, 1);  // "none" is told apart from an unknown one in Run
    app.fallthrough();
    app.footer(EXIT_STATUS_HELP);
    AddLogOption(app);
    AddCheckCommand(app, command);
    AddShowCommand(app, command);
    AddPollCommand(app, command);
    AddCaptureCommand(app, command);
    AddSimulateCommand(app, command);
    AddAlarmsCommand(app, command);
    AddWriteCommand(app, command);
    AddDictionaryCommand(app, command);
}

ExitStatus Complain(const std::string& message, ExitStatus status) {
    std::cerr << "kzm-modbus: " << Printable(message) << std::endl;
    return status;
}

ExitStatus Run(int argc, char** argv) {
    CLI::App app("Reads Modbus devices as objects with value, unit, quality and date-time.", "kzm-modbus");
    Command command;
    try {
        Configure(app, command);
        app.parse(argc, argv);
        if (!command) {
            throw CLI::RequiredError("A command");
        }
        const ExitStatus status = command();
        return std::cout.flush() ? status : Complain("cannot write to standard output", ExitStatus::FILE_ERROR);
    } catch (const CLI::Success& asked) {
        app.exit(asked);
        return ExitStatus::OK;
    } catch (const CLI::ParseError& error) {
        return Complain(std::string(error.what()) + "; --help tells more", ExitStatus::WRONG_USAGE);
    } catch (const Failure& failure) {
        return Complain(failure.what(), failure.GetStatus());
    } catch (const std::exception& error) {
        return Complain(std::string("internal error: ") + error.what(), ExitStatus::INTERNAL_ERROR);
    }
}

}  // namespace
}  // namespace kzm::ModbusTool

int main(int argc, char** argv) {
    return static_cast<int>(kzm::ModbusTool::Run(argc, argv));
}
