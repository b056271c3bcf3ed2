#pragma once

#include <string>
#include <string_view>

#include "Export.h"

namespace kzm::edm::modbus {

// Turns a user's alias into the id of a custom element and back. The id is a prefix, the short id of the kind of
// element, followed by the alias in the platform's encoding. Thread-safe.
class KZM_MODBUS_EXPORT StringCleaner {
public:
    // `prefix`: the short id that ids begin with.
    explicit StringCleaner(std::string_view prefix);

    // Replaces an alias, which may hold any bytes, by its id.
    void Encode(std::string& text) const;

    // Drops as many characters as the prefix has, whatever they are, and decodes the rest. Throws std::out_of_range for
    // a text that is shorter than the prefix, and what the platform throws for a rest that is not an encoded alias; the
    // text is then unchanged.
    void Decode(std::string& text) const;

private:
    std::string mPrefix;
};

}  // namespace kzm::edm::modbus
