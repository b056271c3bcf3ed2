#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kzm::ModbusGateway {

// What a type of other programs' configurations ("u16", "INT16U", "DWORD", "REAL", "float32_cdab") is called in a
// device profile.
struct TypeSpelling {
    std::string_view type;
    std::string_view order = {};  // that goes with it; empty if the text names none
    bool swapsBytes = false;      // it names an order with swapped bytes, which no "order" has
};

// In any case, with or without separators. Nothing for a text that is none of those spellings.
std::optional<TypeSpelling> FindTypeSpelling(std::string_view text);

// `did you mean "float32" with "order": "little"?`
std::string DidYouMean(const TypeSpelling& spelling);

}  // namespace kzm::ModbusGateway
