#include "dictionary/StructureReference.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "dictionary/StructureTable.h"

namespace kz::orba::VortaExtensionModbus::Device {

const nlohmann::json& StructureReference::get() const {
    // The last one is the null of a number that is not a template.
    static const auto TEMPLATES = [] {
        std::array<nlohmann::json, Structures::COUNT + 1> templates;
        for (std::size_t row = 0; row < templates.size(); ++row) {
            templates[row] = BuildStructure(static_cast<StructureTemplate>(row));
        }
        return templates;
    }();
    return TEMPLATES[std::min(Structures::RowOf(mStructure), Structures::COUNT)];
}

}  // namespace kz::orba::VortaExtensionModbus::Device
