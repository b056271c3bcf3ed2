#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kzm::ModbusTool {

// The text with every control character, which could command the terminal, replaced by "?", and bytes that are not
// UTF-8 by U+FFFD.
std::string Printable(std::string_view text);

// How many columns a UTF-8 text takes: its code points.
std::size_t WidthOf(std::string_view text);

// Two digits a byte, a blank after each register: "EB85 4247".
std::string HexOf(std::span<const std::uint8_t> bytes);
std::string HexOf(std::span<const std::uint16_t> registers);

// "1 error", "2 errors".
std::string Counted(std::size_t count, const std::string& noun);

}  // namespace kzm::ModbusTool
