#pragma once

#include <string>

#include "Export.h"

namespace kzm::edm::modbus {

// Turns a user's alias into the id of a custom element and back: a prefix, the short id of the element's kind, and the
// alias in the platform's encoding. Thread-safe.
class KZM_MODBUS_EXPORT StringCleaner {
public:
    // `prefix`: the short id that ids begin with.
    explicit StringCleaner(const std::string& prefix);

    // Replaces an alias, of any bytes, by its id.
    void Encode(std::string& text) const;

    // Drops as many characters as the prefix has, whatever they are, and decodes the rest. Throws std::out_of_range for
    // a text shorter than the prefix and what the platform throws for a rest that is no encoded alias; the text is then
    // unchanged.
    void Decode(std::string& text) const;

private:
    std::string mPrefix;
};

}  // namespace kzm::edm::modbus
