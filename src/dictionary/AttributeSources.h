#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "Export.h"
#include "dictionary/DictionaryText.h"
#include "dictionary/SortedConstants.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The path of an attribute in its data-model object, e.g. "value" or "elements.state.quality", and the id of the device
// element that feeds it, e.g. "XCBR1_Pos".
using AttributeSource = std::pair<DictionaryText, DictionaryText>;

// The sources of one dictionary element: a read-only map from attribute path to device element id. A copy has the same
// elements, not copies of them.
class KZM_MODBUS_EXPORT AttributeSources : public SortedConstants<AttributeSources, AttributeSource> {
public:
    // As of a standard map.
    using mapped_type = DictionaryText;

    // No sources.
    constexpr AttributeSources() = default;

    // The sources in byte order of their paths, and how many they are.
    const AttributeSource* data() const;
    constexpr std::size_t size() const { return mSize; }

    // The id that feeds the path; empty if there is none.
    std::string_view Find(std::string_view path) const {
        const auto found = find(path);
        return found == end() ? std::string_view() : found->second.View();
    }

private:
    friend class DictionaryPool;

    constexpr AttributeSources(std::size_t begin, std::size_t size)
        : mBegin(static_cast<std::uint16_t>(begin)), mSize(static_cast<std::uint16_t>(size)) {}

    std::uint16_t mBegin = 0;  // among the sources of all elements
    std::uint16_t mSize = 0;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
