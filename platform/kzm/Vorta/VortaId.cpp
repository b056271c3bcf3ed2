#include "kzm/Vorta/VortaId.h"

#include <stdexcept>

namespace kzm::Vorta {

namespace {

constexpr std::string_view DIGITS = "0123456789abcdef";
constexpr char ESCAPE = '_';

// Not std::isalnum, which depends on the locale.
bool Stands(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::size_t DigitAt(std::string_view text, std::size_t index) {
    const std::size_t digit = index < text.size() ? DIGITS.find(text[index]) : std::string_view::npos;
    if (digit == std::string_view::npos) {
        throw std::invalid_argument("encoded alias: no two hexadecimal digits after \"_\"");
    }
    return digit;
}

}  // namespace

std::string VortaId::EncodeCustomAlias(std::string_view alias) {
    std::string encoded;
    for (const char c : alias) {
        if (Stands(c)) {
            encoded += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded.append({ESCAPE, DIGITS[byte / 16], DIGITS[byte % 16]});
        }
    }
    return encoded;
}

std::string VortaId::DecodeAliasSuffix(std::string_view suffix) {
    std::string alias;
    for (std::size_t i = 0; i < suffix.size(); ++i) {
        if (Stands(suffix[i])) {
            alias += suffix[i];
            continue;
        }
        if (suffix[i] != ESCAPE) {
            throw std::invalid_argument("encoded alias: a character that is no letter, digit or \"_\"");
        }
        const auto byte = static_cast<unsigned char>(DigitAt(suffix, i + 1) * 16 + DigitAt(suffix, i + 2));
        if (Stands(static_cast<char>(byte))) {
            throw std::invalid_argument("encoded alias: a letter or digit behind \"_\"");
        }
        alias += static_cast<char>(byte);
        i += 2;
    }
    return alias;
}

}  // namespace kzm::Vorta
