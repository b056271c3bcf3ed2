#pragma once

#include <string>
#include <vector>

#include "ObjectTable.h"

// Objects on standard output, as the command show prints them.
namespace kzm::ModbusTool {

// A line for each object; `time`: of the snapshot in a series, otherwise empty.
void PrintJsonLines(const std::vector<ObjectReading>& readings, const std::string& time, bool raw);

// A table; in a series with the time above it and an empty line below.
void PrintTable(const std::vector<ObjectReading>& readings, const std::string& time, const TableForm& form);

}  // namespace kzm::ModbusTool
