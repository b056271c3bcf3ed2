#pragma once

#include <string>
#include <vector>

#include "CommandLine.h"
#include "ObjectReading.h"

namespace kzm::ModbusTool {

// What a table has beside the usual columns.
struct TableForm {
    Milliseconds round;  // how long a round takes: what is older than two has its age
    bool raw = false;    // registers in hexadecimal, and every age
};

// The lines of a table of objects, headings first, without line ends: name, alias if any object has one, value, unit,
// quality, date-time, registers and age if any is shown. An object with elements has a row for each of them. A missing
// value is replaced by the reason.
std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings, const TableForm& form);

// An age as a table shows it: "0.3 s", "-1 s" for one in the future.
std::string AgeText(std::int64_t milliseconds);

// A value as a table shows it.
std::string TextOf(const nlohmann::json& value);

}  // namespace kzm::ModbusTool
