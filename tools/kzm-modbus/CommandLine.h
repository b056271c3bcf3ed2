#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ExitStatus.h"

// CLI11 is included by CommandLine.cpp alone: parsing its headers takes longer than compiling any command.
namespace CLI {
class App;
}  // namespace CLI

namespace kzm::ModbusTool {

using Milliseconds = std::chrono::milliseconds;

// What is left to do once the command line has been read.
using Command = std::function<ExitStatus()>;

// What one command, or the program itself, takes on the command line. The values are filled while the command line is
// read; they must live until then. An option is named "--long" or "-s,--long"; `form` is what --help shows after it.
class CommandSyntax {
public:
    struct Text {
        const char* name;
        const char* form;
        std::string help;
    };

    explicit CommandSyntax(CLI::App& app) : mApp(&app) {}

    // Arguments by position: exactly one, at most one, one or more.
    void AddArgument(const std::string& name, const std::string& help, std::string& value);
    void AddOptionalArgument(const std::string& name, const std::string& help, std::string& value);
    void AddArguments(const std::string& name, const std::string& help, std::vector<std::string>& values);

    void AddFlag(const std::string& name, const std::string& help, bool& value);
    void AddText(const Text& option, std::string& value);
    // May be given more than once.
    void AddTexts(const Text& option, std::vector<std::string>& values);
    // One of a list, which --help shows after the form.
    void AddChoice(const Text& option, const std::vector<std::string>& choices, std::string& value);
    // A whole number from `low` to `high`.
    void AddNumber(const Text& option, std::uint32_t low, std::uint32_t high,
                   const std::function<void(std::uint32_t)>& use);
    // 0.001 to 86400 seconds; --help shows the value that there is without the option.
    void AddSeconds(const Text& option, Milliseconds& value);
    // A text that `read` parses; `read` throws std::invalid_argument with what is wrong with it.
    void AddParsed(const Text& option, const std::function<void(const std::string&)>& read);

    void Require(const std::string& option);
    // Exactly one of these must be given. `heading` is above them in --help.
    void RequireOneOf(const std::string& heading, std::initializer_list<const char*> options);
    // None of `options` can be combined with `other`.
    void Exclude(std::initializer_list<const char*> options, const std::string& other);

    // Shown at the end of --help; each begins with the command.
    void SetExamples(std::initializer_list<const char*> examples);

private:
    CLI::App* mApp;
};

// The command line of the program: its own options, and the commands.
class CommandLine {
public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // What can be said with any command.
    CommandSyntax GetOptionsOfAll();
    CommandSyntax AddCommand(const std::string& name, const std::string& help, Command command);

    // The command that is named, to be run; empty when --help or --version was asked for and has been printed. Throws
    // Failure with WRONG_USAGE for what cannot be understood.
    Command Parse(int argc, char** argv);

private:
    std::unique_ptr<CLI::App> mApp;
    std::map<const CLI::App*, Command> mCommands;
};

}  // namespace kzm::ModbusTool
