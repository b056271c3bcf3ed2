#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusTool {

using ModbusGateway::Alternatives;
using ModbusGateway::Quoted;
using ModbusGateway::Suggestion;

namespace {

// A check of CLI11 with a message of ours.
CLI::Validator Reworded(const CLI::Validator& check, const std::string& message) {
    const auto complain = [check, message](const std::string& text) {
        return check(text).empty() ? "" : Quoted(text) + message;
    };
    return CLI::Validator(complain, "");
}

// Help texts whose groups of options have headings like all others.
struct HelpFormatter : CLI::Formatter {
    std::string make_expanded(const CLI::App* group) const override {
        const auto isOwn = [group](const CLI::Option* option) { return option != group->get_help_ptr(); };
        return make_group(group->get_group(), /*is_positional=*/false, group->get_options(isOwn));
    }
};

// Without them "010" is ten rather than eight.
std::string WithoutLeadingZeros(const std::string& text) {
    const std::size_t first = text.find_first_not_of('0');
    return first == text.npos && !text.empty() ? "0" : text.substr(std::min(first, text.size()));
}

// Of the program or of a command, those of all its groups among them.
void CollectOptions(const CLI::App& app, std::vector<std::string>& names) {
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    for (const CLI::App* group : app.get_subcommands([](const CLI::App* sub) { return sub->get_name().empty(); })) {
        CollectOptions(*group, names);
    }
}

std::vector<std::string> NamesOfCommands(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

// CLI11's own words, except for errors that it describes poorly.
std::string Reword(const CLI::ParseError& error) {
    const std::string text = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        return text.substr(0, text.find(':')) + " needs a value";
    }
    const std::size_t choice = text.find(" option from [");
    if (choice != text.npos) {
        const std::size_t names = text.find('[') + 1;
        const std::string list = text.substr(names, text.find(']') - names);
        return "exactly one of " + CLI::detail::find_and_replace(list, ",", ", ") + " is required";
    }
    const auto* excludes = dynamic_cast<const CLI::ExcludesError*>(&error);
    return excludes ? CLI::detail::find_and_replace(text, " excludes ", " cannot be combined with ") : text;
}

// What is wrong with the options and arguments of a command that is named.
std::string DescribeUsage(const CLI::App& app, const CLI::App& command, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    const auto option =
        std::find_if(unknown.begin(), unknown.end(), [](const std::string& text) { return text.starts_with('-'); });
    if (option != unknown.end()) {
        std::vector<std::string> names;
        CollectOptions(command, names);
        CollectOptions(app, names);
        const std::string name = option->substr(0, option->find('='));
        const bool isMisplaced = std::find(names.begin(), names.end(), name) != names.end();
        return isMisplaced ? name + " must come after the command"
                           : "no option " + Quoted(name) + Suggestion(name, names);
    }
    const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&error) && !unknown.empty();
    return isExtra ? "unexpected argument " + Quoted(unknown.front()) : Reword(error);
}

// What is wrong with a command line that CLI11 refuses, and where to read more.
std::string Describe(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    if (!commands.empty()) {
        const std::string& command = commands.front()->get_name();
        return command + ": " + DescribeUsage(app, *commands.front(), error) + " (see kzm-modbus " + command +
               " --help)";
    }
    const std::vector<std::string> unknown = app.remaining(true);
    const std::string wrong =
        unknown.empty() ? Reword(error)
                        : "no command " + Quoted(unknown.front()) + Suggestion(unknown.front(), NamesOfCommands(app));
    return wrong + " (see kzm-modbus --help)";
}

}  // namespace

void CommandSyntax::AddArgument(const std::string& name, const std::string& help, std::string& value) {
    mApp->add_option(name, value, help)->required()->type_name("");
}

void CommandSyntax::AddOptionalArgument(const std::string& name, const std::string& help, std::string& value) {
    mApp->add_option(name, value, help)->type_name("");
}

void CommandSyntax::AddArguments(const std::string& name, const std::string& help, std::vector<std::string>& values) {
    mApp->add_option(name, values, help)->required()->type_name("");
}

void CommandSyntax::AddFlag(const std::string& name, const std::string& help, bool& value) {
    mApp->add_flag(name, value, help);
}

void CommandSyntax::AddText(const Text& option, std::string& value) {
    mApp->add_option(option.name, value, option.help)->type_name(option.form);
}

void CommandSyntax::AddTexts(const Text& option, std::vector<std::string>& values) {
    mApp->add_option(option.name, values, option.help)->type_name(option.form)->expected(1)->take_all();
}

void CommandSyntax::AddChoice(const Text& option, const std::vector<std::string>& choices, std::string& value) {
    const auto complain = [choices](const std::string& text) {
        return CLI::IsMember(choices)(text).empty() ? "" : Quoted(text) + " is unknown" + Alternatives(text, choices);
    };
    mApp->add_option(option.name, value, option.help)
        ->type_name(option.form)
        ->check(CLI::Validator(complain, CLI::detail::generate_set(choices)));
}

void CommandSyntax::AddNumber(const Text& option, std::uint32_t low, std::uint32_t high,
                              const std::function<void(std::uint32_t)>& use) {
    const auto range = CLI::Range(std::int64_t{low}, std::int64_t{high});
    mApp->add_option_function<std::uint32_t>(option.name, use, option.help)
        ->type_name(option.form)
        ->transform(WithoutLeadingZeros)
        ->check(Reworded(range, " is not a whole number from " + std::to_string(low) + " to " + std::to_string(high)));
}

void CommandSyntax::AddSeconds(const Text& option, Milliseconds& value) {
    constexpr double LOWEST = -std::numeric_limits<double>::infinity();
    const auto set = [&value](double seconds) {
        value = Milliseconds(static_cast<std::int64_t>(seconds * 1000 + 0.5));
    };
    const double usual = std::chrono::duration<double>(value).count();
    // NaN is in every range of CLI11, also in the one that is excluded.
    const auto range = CLI::Range(0.001, 86400.0) & !CLI::Range(LOWEST, 0.0);
    mApp->add_option_function<double>(
            option.name, set,
            option.help + " (" + ModbusGateway::NumberText(usual, ModbusGateway::NumberPrecision::DIGITS_15) + ")")
        ->type_name(option.form)
        ->check(Reworded(range, " is not a number of seconds from 0.001 to 86400"));
}

void CommandSyntax::AddParsed(const Text& option, const std::function<void(const std::string&)>& read) {
    const std::string name = option.name;
    const auto tryToRead = [name, read](const std::string& text) {
        try {
            read(text);
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError(name, error.what());
        }
    };
    mApp->add_option_function<std::string>(name, tryToRead, option.help)->type_name(option.form);
}

void CommandSyntax::Require(const std::string& option) {
    mApp->get_option(option)->required();
}

void CommandSyntax::RequireOneOf(const std::string& heading, std::initializer_list<const char*> options) {
    CLI::Option_group* group = mApp->add_option_group(heading + " (exactly one is required)");
    for (const char* option : options) {
        group->add_option(mApp->get_option(option));
    }
    group->require_option(1);
}

void CommandSyntax::Exclude(std::initializer_list<const char*> options, const std::string& other) {
    for (const char* option : options) {
        mApp->get_option(option)->excludes(mApp->get_option(other));
    }
}

void CommandSyntax::SetExamples(std::initializer_list<const char*> examples) {
    std::string footer = examples.size() == 1 ? "Example:" : "Examples:";
    for (const char* example : examples) {
        footer += std::string("\n  kzm-modbus ") + example;
    }
    mApp->footer(footer);
}

CommandLine::CommandLine()
    : mApp(std::make_unique<CLI::App>("Reads Modbus devices as objects with value, unit, quality and date-time.",
                                      "kzm-modbus")) {
    mApp->set_version_flag("--version", "kzm-modbus " KZM_VERSION, "Show the version");
    mApp->set_help_flag("-h,--help", "Show this help");
    mApp->require_subcommand(0, 1);  // Parse says more about a missing one
    mApp->fallthrough();
    mApp->formatter(std::make_shared<HelpFormatter>());
    mApp->get_formatter()->label("SUBCOMMAND", "COMMAND ...");
    mApp->footer(ExitStatusHelp());
}

CommandLine::~CommandLine() = default;

CommandSyntax CommandLine::GetOptionsOfAll() {
    return CommandSyntax(*mApp);
}

CommandSyntax CommandLine::AddCommand(const std::string& name, const std::string& help, Command command) {
    CLI::App* const added = mApp->add_subcommand(name, help)->group("Commands");
    mCommands.emplace(added, std::move(command));
    return CommandSyntax(*added);
}

Command CommandLine::Parse(int argc, char** argv) {
    try {
        mApp->parse(argc, argv);
        const auto named = mApp->get_subcommands();
        if (named.empty()) {
            throw CLI::RequiredError("a command");
        }
        return mCommands.at(named.front());
    } catch (const CLI::Success& asked) {
        mApp->exit(asked);
        return {};
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitStatus::WRONG_USAGE, Describe(*mApp, error));
    }
}

}  // namespace kzm::ModbusTool
