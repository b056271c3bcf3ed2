#pragma once

#include <string>
#include <vector>

#include "ObjectReading.h"

namespace kzm::ModbusTool {

// The lines of a table of objects, headings first, without line ends: name, alias where any object has one, value,
// unit, quality, date-time; an object with elements takes a row for each. Why there is no value stands in its place.
// `colour`: with the terminal's colours.
std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings, bool colour);

// A value as it stands in a table.
std::string TextOf(const nlohmann::json& value);

}  // namespace kzm::ModbusTool
