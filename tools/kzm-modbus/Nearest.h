#pragma once

#include <string>
#include <vector>

namespace kzm::ModbusTool {

// The three names that differ least from a wanted one, in any case, the nearest first: "a, b, c". A name that contains
// the wanted text does not differ from it.
std::string NearestTo(const std::string& wanted, const std::vector<std::string>& names);

}  // namespace kzm::ModbusTool
