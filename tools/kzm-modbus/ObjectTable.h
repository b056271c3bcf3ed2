#pragma once

#include <string>
#include <vector>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// The lines of a table of objects, headings first, without line ends: name, alias if any object has one, value, unit,
// quality, date-time. An object with elements has a row for each of them. A missing value is replaced by the reason.
std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings);

// A value as a table shows it.
std::string TextOf(const nlohmann::json& value);

}  // namespace kzm::ModbusTool
