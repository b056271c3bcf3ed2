#include "ExitStatus.h"

#include <array>

namespace kzm::ModbusTool {

namespace {

struct StatusRow {
    ExitStatus status;
    const char* meaning;
};

constexpr std::array STATUSES{
    StatusRow{ExitStatus::OK, "success"},
    StatusRow{ExitStatus::FAULTY_INPUT, "a profile or a capture has errors"},
    StatusRow{ExitStatus::WRONG_USAGE, "wrong usage"},
    StatusRow{ExitStatus::FILE_ERROR, "a file cannot be read or written"},
    StatusRow{ExitStatus::NOT_REACHED, "the device cannot be reached; simulate: cannot listen on the address"},
    StatusRow{ExitStatus::NOT_FOUND, "no such object, service, alarm, snapshot or dictionary element"},
    StatusRow{ExitStatus::ONLY_WARNINGS, "check: warnings, but no errors"},
    StatusRow{ExitStatus::INTERNAL_ERROR, "internal error"},
    StatusRow{ExitStatus::REFUSED, "write: refused because another value would be written; nothing was sent"},
    StatusRow{ExitStatus::NOT_WRITTEN, "write: the device did not accept it, or holds something else afterwards"},
};

constexpr bool IsNumbered() {
    for (std::size_t i = 0; i < STATUSES.size(); ++i) {
        if (STATUSES[i].status != static_cast<ExitStatus>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(IsNumbered(), "row n is status n");

}  // namespace

std::string ExitStatusHelp() {
    std::string help = "Exit status:";
    for (const StatusRow& row : STATUSES) {
        help += "\n  " + std::to_string(static_cast<int>(row.status)) + "  " + row.meaning;
    }
    return help;
}

}  // namespace kzm::ModbusTool
