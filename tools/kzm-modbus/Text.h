#pragma once

#include <string>
#include <string_view>

namespace kzm::ModbusTool {

// The text with every control character, which could command the terminal, replaced by "?", and what is no UTF-8 by
// U+FFFD.
std::string Printable(std::string_view text);

// How many columns a UTF-8 text takes: its code points.
std::size_t WidthOf(std::string_view text);

// A number as a person reads it: one that a 32-bit float holds in that float's shortest form (0.1, not
// 0.10000000149011612), any other with up to 12 significant digits.
std::string FormatNumber(double number);

// "1 error", "2 errors".
std::string Counted(std::size_t count, const std::string& noun);

}  // namespace kzm::ModbusTool
