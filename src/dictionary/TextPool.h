#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dictionary/DictionaryText.h"

namespace kz::orba::VortaExtensionModbus::Device {

// Gathers texts in one array of characters at compile time.
class TextPool {
public:
    constexpr DictionaryText Add(std::string_view text) { return Add(text, ""); }

    // The two texts as one.
    constexpr DictionaryText Add(std::string_view text, std::string_view rest) {
        const std::size_t begin = mSize;
        Append(text);
        Append(rest);
        return At(begin, mSize - begin);
    }

    // A text that many rows share is stored once.
    constexpr DictionaryText Share(std::string_view text) {
        for (std::size_t i = 0; i < mSharedCount; ++i) {
            if (View(mShared[i]) == text) {
                return mShared[i];
            }
        }
        return mShared[mSharedCount++] = Add(text);
    }

    // `text` as a part of `whole`, whose characters are `characters`, if it is one; a text of its own if not.
    constexpr DictionaryText AddOrPartOf(DictionaryText whole, std::string_view characters, std::string_view text) {
        const std::size_t place = characters.find(text);
        return place == std::string_view::npos ? Add(text) : At(whole.mBegin + place, text.size());
    }

    constexpr std::string_view View(DictionaryText text) const { return {mText.data() + text.mBegin, text.mSize}; }
    constexpr std::size_t Size() const { return mSize; }

    // All characters; SIZE is Size().
    template <std::size_t SIZE>
    constexpr std::array<char, SIZE> Copy() const {
        std::array<char, SIZE> text{};
        std::copy_n(mText.begin(), SIZE, text.begin());
        return text;
    }

private:
    constexpr void Append(std::string_view text) {
        if (text.size() > mText.size() - mSize) {
            throw "the pool is full: make mText larger";
        }
        std::copy(text.begin(), text.end(), mText.begin() + mSize);
        mSize += text.size();
    }

    static constexpr DictionaryText At(std::size_t begin, std::size_t size) {
        const DictionaryText text(static_cast<std::uint32_t>(begin), static_cast<std::uint8_t>(size));
        if (text.mBegin != begin || text.mSize != size) {
            throw "a text is longer than 255 bytes";
        }
        return text;
    }

    std::array<char, 128 * 1024> mText{};
    std::size_t mSize = 0;
    std::array<DictionaryText, 64> mShared{};
    std::size_t mSharedCount = 0;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
