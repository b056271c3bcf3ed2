#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gateway/json/Problem.h"

namespace kzm::ModbusGateway {

// A JSON document that knows the line of each of its values. Comments are allowed.
class LocatedJson {
public:
    // How deep lists and objects may be nested.
    static constexpr std::size_t MAX_DEPTH = 64;
    // The most bytes of a member's name; keeps pointers short.
    static constexpr std::size_t MAX_NAME_LENGTH = 256;

    // Never throws for the text. A text that is not JSON or exceeds these limits gives one problem with its line, and a
    // null root; a member that occurs twice in an object gives one, and the first is used.
    static LocatedJson Parse(std::string_view text, Problems& problems);

    // Whether the text was JSON within the limits.
    bool IsRead() const { return mRead; }
    const nlohmann::json& GetRoot() const { return mRoot; }

    // The line of the value at a JSON pointer (of a member, the line of its key); for an unknown pointer that of the
    // nearest parent.
    std::size_t GetLine(const std::string& pointer) const;

    // The JSON pointer to a member or, by its number, an item of the value at `pointer`.
    static std::string Extend(const std::string& pointer, const std::string& token);

private:
    class Builder;

    bool mRead = false;
    nlohmann::json mRoot;
    // A value is known by its number in the order of the text; the root is 0.
    std::vector<std::size_t> mLines;
    std::map<std::pair<std::size_t, std::string>, std::size_t> mChildren;  // by parent and reference token
};

}  // namespace kzm::ModbusGateway
