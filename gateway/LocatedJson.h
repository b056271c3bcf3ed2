#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "gateway/Problem.h"

namespace kzm::ModbusGateway {

// A JSON document that remembers on which line each value stands. Comments are allowed.
class LocatedJson {
public:
    // Never throws for the text. A text that is no JSON gives one problem with its line; a member that stands twice in one
    // object gives one, and the first counts. The root is null when the text could not be read.
    static LocatedJson Parse(std::string_view text, Problems& problems);

    const nlohmann::json& GetRoot() const { return mRoot; }

    // The line of the value at a JSON pointer, of a member its key's; that of its nearest parent for an unknown pointer.
    std::size_t GetLine(const std::string& pointer) const;

private:
    nlohmann::json mRoot;
    std::map<std::string, std::size_t> mLines;
};

}  // namespace kzm::ModbusGateway
