#include "Text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kzm::ModbusTool {

namespace {

// The JSON library puts U+FFFD in the place of bytes that are not UTF-8.
std::string Utf8(std::string_view text) {
    using nlohmann::json;
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

}  // namespace

std::string Printable(std::string_view raw) {
    const std::string text = Utf8(raw);
    std::string printable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool c1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        i += c1 ? 1 : 0;
        printable += byte < 0x20 || byte == 0x7F || c1 ? '?' : text[i];
    }
    return printable;
}

std::size_t WidthOf(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string HexOf(std::span<const std::uint8_t> bytes) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += i > 0 && i % 2 == 0 ? " " : "";
        text += DIGITS[bytes[i] >> 4U];
        text += DIGITS[bytes[i] & 0xFU];
    }
    return text;
}

std::string HexOf(std::span<const std::uint16_t> registers) {
    std::vector<std::uint8_t> bytes;
    for (const std::uint16_t word : registers) {
        bytes.push_back(static_cast<std::uint8_t>(word >> 8U));
        bytes.push_back(static_cast<std::uint8_t>(word & 0xFFU));
    }
    return HexOf(bytes);
}

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace kzm::ModbusTool
