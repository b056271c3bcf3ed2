#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Export.h"

namespace kz::orba::VortaExtensionModbus::Device {

// A constant text of the dictionary, such as a key or a name, in UTF-8. Behaves as a std::string_view, which is valid
// as long as the library is loaded. Holds a place in the library's pool of characters rather than a pointer, so that
// loading the library adjusts nothing. Thread-safe.
class KZM_MODBUS_EXPORT DictionaryText {
public:
    // The empty text.
    constexpr DictionaryText() = default;

    // The characters, not followed by a null character.
    std::string_view View() const;
    operator std::string_view() const { return View(); }
    operator std::string() const { return std::string(View()); }

    // As of std::string_view; sizes are in bytes.
    using value_type = char;
    static constexpr std::size_t npos = std::string_view::npos;
    constexpr std::size_t size() const { return mSize; }
    constexpr std::size_t length() const { return mSize; }
    constexpr bool empty() const { return mSize == 0; }
    const char* data() const { return View().data(); }
    const char* begin() const { return data(); }
    const char* end() const { return data() + mSize; }
    const char& operator[](std::size_t index) const { return data()[index]; }
    bool starts_with(std::string_view text) const { return View().starts_with(text); }
    bool ends_with(std::string_view text) const { return View().ends_with(text); }
    std::size_t find(std::string_view text, std::size_t from = 0) const { return View().find(text, from); }
    std::size_t rfind(std::string_view text, std::size_t from = npos) const { return View().rfind(text, from); }
    std::string_view substr(std::size_t from, std::size_t count = npos) const { return View().substr(from, count); }

    // By the bytes.
    friend bool operator==(DictionaryText left, DictionaryText right) { return left.View() == right.View(); }
    friend bool operator==(DictionaryText left, std::string_view right) { return left.View() == right; }
    friend auto operator<=>(DictionaryText left, DictionaryText right) { return left.View() <=> right.View(); }
    friend auto operator<=>(DictionaryText left, std::string_view right) { return left.View() <=> right; }

    // Writes the characters.
    friend KZM_MODBUS_EXPORT std::ostream& operator<<(std::ostream& stream, DictionaryText text);

private:
    friend class TextPool;

    constexpr DictionaryText(std::uint32_t begin, std::uint8_t size) : mBegin(begin & 0xFFFFFF), mSize(size) {}

    std::uint32_t mBegin : 24 = 0;  // in the pool
    std::uint32_t mSize : 8 = 0;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
