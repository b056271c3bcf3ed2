#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "gateway/json/Suggestions.h"

// Parts of the messages about faulty profiles and captures.
namespace kzm::ModbusGateway {

// The text between quotation marks.
std::string Quoted(std::string_view text);

// `"a", "b", "c"`, a long list cut; "none" for no names.
std::string ListOf(const Names& names);

// A value as it may be cited: a long one is cut, of a list or object nothing is told.
std::string Cited(const nlohmann::json& value);

// `; did you mean "x"? Allowed: ...` with the known name that differs least from an unknown one, or just `; allowed:
// ...` when none is near. `allowed`: what to say there if not the list of the known names.
std::string Alternatives(std::string_view unknown, const Names& known, const std::string& allowed = {});

}  // namespace kzm::ModbusGateway
