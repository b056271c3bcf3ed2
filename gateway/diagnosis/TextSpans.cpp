#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "gateway/diagnosis/CodeLength.h"
#include "gateway/diagnosis/ValueSpan.h"

namespace kzm::ModbusGateway {

namespace {

constexpr std::size_t MAX_REGISTERS = 40;

enum class CharacterClass : std::uint8_t { DIGIT, UPPER, LOWER, SEPARATOR, OTHER, NONE };

CharacterClass ClassOf(unsigned char c) {
    if (c >= '0' && c <= '9') {
        return CharacterClass::DIGIT;
    }
    if (c >= 'A' && c <= 'Z') {
        return CharacterClass::UPPER;
    }
    if (c >= 'a' && c <= 'z') {
        return CharacterClass::LOWER;
    }
    if (std::string_view(" -._/:").find(static_cast<char>(c)) != std::string_view::npos) {
        return CharacterClass::SEPARATOR;
    }
    return c >= 0x20 && c < 0x7F ? CharacterClass::OTHER : CharacterClass::NONE;
}

// How many bits the class of a character takes after that of the one before (NONE: the first one), and the character
// within its class.
double BitsForCharacter(CharacterClass before, CharacterClass now) {
    // clang-format off
    static constexpr std::array<std::array<double, 5>, 6> SHARES{{
        //DIGIT UPPER  LOWER  SEPAR. OTHER
        {{0.80, 0.07,  0.02,  0.10,  0.01}},   // after DIGIT
        {{0.17, 0.60,  0.13,  0.09,  0.01}},   // after UPPER
        {{0.05, 0.03,  0.82,  0.09,  0.01}},   // after LOWER
        {{0.35, 0.25,  0.15,  0.24,  0.01}},   // after SEPARATOR
        {{0.20, 0.20,  0.20,  0.20,  0.20}},   // after OTHER
        {{0.35, 0.45,  0.15,  0.03,  0.02}},   // first
    }};
    // clang-format on
    static constexpr std::array<double, 5> SIZES{10, 26, 26, 6, 27};
    const auto column = static_cast<std::size_t>(now);
    return std::log2(SIZES[column] / SHARES[static_cast<std::size_t>(before)][column]);
}

// The characters of a register in reading order, as a form has them; empty if it cannot be of that form.
std::string CharactersOf(ValueForm form, std::uint16_t word) {
    const char high = static_cast<char>(word >> 8);
    const char low = static_cast<char>(word & 0xFF);
    switch (form) {
        case ValueForm::TEXT:
            return {high, low};
        case ValueForm::TEXT_SWAPPED:
            return {low, high};
        case ValueForm::TEXT_LOW_BYTES:
            return high == 0 ? std::string{low} : std::string();
        default:
            return low == 0 ? std::string{high} : std::string();
    }
}

// A text read on, register by register.
struct TextReader {
    ValueForm form;
    CharacterClass last = CharacterClass::NONE;
    std::size_t characters = 0;
    bool ended = false;
    double bits = 0;

    bool Take(std::uint16_t word) {
        const std::string text = CharactersOf(form, word);
        return !text.empty() && std::ranges::all_of(text, [this](char c) { return TakeCharacter(c); });
    }
    bool TakeCharacter(char c) {
        const auto now = ClassOf(static_cast<unsigned char>(c));
        if (c == 0 && characters > 0) {
            bits += ended ? 0.7 : 2.0;
            ended = true;
            return true;
        }
        if (ended || now == CharacterClass::NONE) {
            return false;
        }
        bits += BitsForCharacter(last, now);
        last = now;
        ++characters;
        return true;
    }
};

// Fields of texts have round sizes.
double BitsForLength(std::size_t count) {
    constexpr std::array<std::size_t, 12> USUAL{2, 3, 4, 5, 6, 8, 10, 12, 15, 16, 20, 32};
    return std::ranges::find(USUAL, count) != USUAL.end() ? 4.0 : 6.0;
}

void AddTextSpansOf(const RegisterWindow& window, ValueForm form, std::size_t minimum, ValueSpans& spans) {
    TextReader reader{form};
    const std::size_t most = std::min(window.GetRest(), MAX_REGISTERS);
    for (std::size_t count = 1; count <= most && reader.Take(window.At(0, count).back()); ++count) {
        if (reader.characters >= minimum && count > 1) {
            spans.push_back({form, 0, static_cast<std::uint16_t>(window.first), static_cast<std::uint16_t>(count),
                             reader.bits + BitsForLength(count) + window.BitsForChanges(count)});
        }
    }
}

}  // namespace

std::string TextOf(const ValueSpan& span, const RegisterRun& run) {
    std::string text;
    for (const std::uint16_t word : run.At(0, span.first, span.count)) {
        text += CharactersOf(span.form, word);
    }
    return text.substr(0, text.find('\0'));
}

void AddTextSpans(const RegisterWindow& window, ValueSpans& spans) {
    AddTextSpansOf(window, ValueForm::TEXT, 3, spans);
    AddTextSpansOf(window, ValueForm::TEXT_SWAPPED, 3, spans);
    AddTextSpansOf(window, ValueForm::TEXT_LOW_BYTES, 4, spans);
    AddTextSpansOf(window, ValueForm::TEXT_HIGH_BYTES, 4, spans);
}

}  // namespace kzm::ModbusGateway
