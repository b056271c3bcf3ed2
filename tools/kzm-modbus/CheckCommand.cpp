#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "Files.h"
#include "Options.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

ExitStatus Check(const std::string& path) {
    const ProfileLoader::Result result = ProfileLoader::Load(ReadFile(path));
    PrintProblems(std::cout, path, result.problems);
    const auto errors = static_cast<std::size_t>(
        std::count_if(result.problems.begin(), result.problems.end(),
                      [](const Problem& problem) { return problem.severity == Problem::Severity::ERROR; }));
    std::cout << path << ": ";
    if (result.profile) {
        std::cout << Counted(result.profile->objects.size(), "object") << " in "
                  << Counted(result.profile->frameNames.size(), "frame") << "; ";
    }
    std::cout << Counted(errors, "error") << ", " << Counted(result.problems.size() - errors, "warning") << '\n';
    if (errors > 0) {
        return ExitStatus::FAULTY_INPUT;
    }
    return result.problems.empty() ? ExitStatus::OK : ExitStatus::ONLY_WARNINGS;
}

}  // namespace

void AddCheckCommand(CommandLine& line) {
    const auto path = std::make_shared<std::string>();
    CommandSyntax check =
        line.AddCommand("check", "Print every error and warning of a profile", [path] { return Check(*path); });
    AddProfileArgument(check, *path);
    check.SetExamples({"check profiles/energy-meter.jsonc"});
}

}  // namespace kzm::ModbusTool
