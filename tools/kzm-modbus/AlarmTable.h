#pragma once

#include <string>
#include <vector>

#include "AlarmReading.h"
#include "TextTable.h"

namespace kzm::ModbusTool {

// The headings of a table of alarms, and the row of one evaluation; `raw`: with the registers and their age.
Row AlarmHeadings(bool raw);
Row RowOf(const AlarmReading& reading, const std::string& time, bool raw);

}  // namespace kzm::ModbusTool
