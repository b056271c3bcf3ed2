#pragma once

#include <stdexcept>
#include <string>

namespace kzm::ModbusTool {

// What the program ends with; ExitStatus.cpp says what each means. The numbers are stable: scripts rely on them.
enum class ExitStatus : int {
    OK,
    FAULTY_INPUT,
    WRONG_USAGE,
    FILE_ERROR,
    NOT_REACHED,
    NOT_FOUND,
    ONLY_WARNINGS,
    INTERNAL_ERROR,
    REFUSED,
    NOT_WRITTEN,
};

// "Exit status:" and a line for each, as --help shows them.
std::string ExitStatusHelp();

// Ends the program with a status and one line on standard error.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), mStatus(status) {}
    ExitStatus GetStatus() const { return mStatus; }

private:
    ExitStatus mStatus;
};

}  // namespace kzm::ModbusTool
