#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kz::orba::VortaExtensionModbus::Device {

// One attribute of a data-model object and the device element that feeds it.
struct AttributeSource {
    std::string_view path;  // within the object, e.g. "value" or "elements.state.quality"
    std::string_view id;    // of the device profile, e.g. "XCBR1_Pos"
};

// The sources of one dictionary element, in the order of its row. The texts are constants of the library.
class AttributeSources {
public:
    // The most sources that one element has.
    static constexpr std::size_t CAPACITY = 4;

    // A source past CAPACITY is ignored; no row has so many.
    constexpr void Add(AttributeSource source) {
        if (mSize < CAPACITY) {
            mSources[mSize++] = source;
        }
    }

    // The id that feeds the path; empty where none does.
    constexpr std::string_view Find(std::string_view path) const {
        for (const AttributeSource& source : *this) {
            if (source.path == path) {
                return source.id;
            }
        }
        return {};
    }

    // The sources in order, and how many they are.
    constexpr const AttributeSource* begin() const { return mSources.data(); }
    constexpr const AttributeSource* end() const { return mSources.data() + mSize; }
    constexpr std::size_t size() const { return mSize; }

private:
    std::array<AttributeSource, CAPACITY> mSources{};
    std::size_t mSize = 0;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
