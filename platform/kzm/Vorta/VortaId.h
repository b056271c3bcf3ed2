#pragma once

#include <string>
#include <string_view>

#include "kzm/Platform/Export.h"

namespace kzm::Vorta {

// Makes a user's alias, of any bytes, part of an element id and back. In the encoded form ASCII letters and digits
// stand; every other byte is "_" and two lower-case hexadecimal digits ("Cage 3" is "Cage_203"). Thread-safe.
class KZM_PLATFORM_EXPORT VortaId {
public:
    // Every alias has one encoded form; the empty one is empty.
    static std::string EncodeCustomAlias(std::string_view alias);

    // Throws std::invalid_argument for a text that EncodeCustomAlias does not make of any alias.
    static std::string DecodeAliasSuffix(std::string_view suffix);
};

}  // namespace kzm::Vorta
