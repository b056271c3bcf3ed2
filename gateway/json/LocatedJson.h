#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gateway/json/Problem.h"

namespace kzm::ModbusGateway {

// A JSON document that remembers on which line each value stands. Comments are allowed.
class LocatedJson {
public:
    // The most lists and objects that may stand one in another.
    static constexpr std::size_t MAX_DEPTH = 64;
    // The most bytes of a member's name, so that pointers stay short.
    static constexpr std::size_t MAX_NAME_LENGTH = 256;

    // Never throws for the text. A text that is no JSON, or passes these limits, gives one problem with its line; a
    // member that stands twice in one object gives one, and the first counts. The root is null when the text could not
    // be read.
    static LocatedJson Parse(std::string_view text, Problems& problems);

    // Whether the text could be read.
    bool IsRead() const { return mRead; }
    const nlohmann::json& GetRoot() const { return mRoot; }

    // The line of the value at a JSON pointer, of a member its key's; that of its nearest parent for an unknown
    // pointer.
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
