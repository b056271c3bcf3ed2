#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kzm::ModbusGateway {

using Names = std::vector<std::string>;

// How many characters must be put in, left out or exchanged to make one text of the other.
std::size_t Distance(std::string_view left, std::string_view right);

// The three names that differ least from a wanted one, in any case, the nearest first: "a, b, c". A name that contains
// the wanted text does not differ from it. Of a long wanted text the first 200 bytes count.
std::string NearestTo(std::string_view wanted, const Names& names);

}  // namespace kzm::ModbusGateway
