#pragma once

#include <string>
#include <vector>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// Prints every object that is not Good, grouped by cause, most objects first: the cause and how many it concerns, then
// a line for each. `json`: all of it as one JSON object, "good" (their number) and "causes", each with "reason",
// "text" and "objects".
void PrintBadObjects(const std::vector<ObjectReading>& readings, const std::string& profile, bool json);

}  // namespace kzm::ModbusTool
