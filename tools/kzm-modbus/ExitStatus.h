#pragma once

#include <stdexcept>
#include <string>

namespace kzm::ModbusTool {

// What the program ends with. The numbers are stable: scripts rely on them.
enum class ExitStatus : int {
    OK = 0,
    FAULTY_INPUT = 1,      // a profile or a capture has errors
    WRONG_USAGE = 2,       // the command line cannot be understood
    FILE_ERROR = 3,        // a file cannot be read or written
    NOT_REACHED = 4,       // no frame was read, or the address cannot be listened on
    OBJECT_NOT_FOUND = 5,  // the profile has no such object or no alarms, or the dictionary no such element
    ONLY_WARNINGS = 6,     // `check` found warnings and no errors
    INTERNAL_ERROR = 7,
    REFUSED = 8,      // `write` would write another value than the one that is asked for; nothing was sent
    NOT_WRITTEN = 9,  // the device did not take a write, or holds something else after it
};

inline constexpr const char* EXIT_STATUS_HELP =
    "Exit status:\n"
    "  0  success\n"
    "  1  the profile or the capture has errors\n"
    "  2  wrong usage\n"
    "  3  a file cannot be read or written\n"
    "  4  the device cannot be reached, or the address not be listened on\n"
    "  5  the profile has no such object or no alarms, or the dictionary no such element\n"
    "  6  check: warnings, but no errors\n"
    "  7  internal error\n"
    "  8  write: refused, it would write another value; nothing was sent\n"
    "  9  write: the device did not take it, or holds something else after it";

// Ends the program with a status and one line on standard error.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), mStatus(status) {}
    ExitStatus GetStatus() const { return mStatus; }

private:
    ExitStatus mStatus;
};

}  // namespace kzm::ModbusTool
