#pragma once

#include <string>
#include <string_view>

#include "kzm/Platform/Export.h"

namespace kzm::Vorta {

// Encodes a user's alias, which may hold any bytes, for use in an element id, and decodes it. ASCII letters and digits
// are kept; every other byte becomes "_" and two lower-case hexadecimal digits ("Cage 3" is "Cage_203"). Thread-safe.
class KZM_PLATFORM_EXPORT VortaId {
public:
    // Every alias has exactly one encoded form; that of the empty alias is empty.
    static std::string EncodeCustomAlias(std::string_view alias);

    // Throws std::invalid_argument for a text that EncodeCustomAlias never returns.
    static std::string DecodeAliasSuffix(std::string_view suffix);
};

}  // namespace kzm::Vorta
