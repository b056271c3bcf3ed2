#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "gateway/Export.h"
#include "gateway/json/Suggestions.h"

// Parts of messages about profiles, captures and command lines.
namespace kzm::ModbusGateway {

// The text between quotation marks; after 200 bytes "..." stands for the rest.
KZM_GATEWAY_EXPORT std::string Quoted(std::string_view text);

// `"a", "b", "c"`, each name once, "..." after 20; "none" for no names.
KZM_GATEWAY_EXPORT std::string ListOf(const Names& names);

// A JSON value as text, "..." after 40 bytes; "this list" or "this object" for what has members.
KZM_GATEWAY_EXPORT std::string Cited(const nlohmann::json& value);

// To be appended to a message about an unknown name: `; did you mean "x"? Allowed: ...`, or `; allowed: ...` if no
// known name is near. `allowed`: what to name there instead of all known names.
KZM_GATEWAY_EXPORT std::string Alternatives(std::string_view unknown, const Names& known,
                                            const std::string& allowed = {});

}  // namespace kzm::ModbusGateway
