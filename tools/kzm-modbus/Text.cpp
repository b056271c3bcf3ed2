#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>

namespace kzm::ModbusTool {

namespace {

bool IsFloat(double number) {
    return std::abs(number) <= std::numeric_limits<float>::max() &&
           static_cast<double>(static_cast<float>(number)) == number;
}

// The JSON library puts U+FFFD in the place of what is no UTF-8.
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

std::string FormatNumber(double number) {
    char text[64];
    if (!IsFloat(number)) {
        std::snprintf(text, sizeof text, "%.12g", number);
        return text;
    }
    const double magnitude = std::abs(number);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e12);
    const auto end = std::to_chars(text, text + sizeof text, static_cast<float>(number),
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return std::string(text, end.ptr);
}

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace kzm::ModbusTool
