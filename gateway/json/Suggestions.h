#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "gateway/Export.h"

// What a misspelt name may have meant: of profiles, captures, commands and options alike.
namespace kzm::ModbusGateway {

// Names that are known, or that are to be shown.
using Names = std::vector<std::string>;

// Up to three of the known names that an unknown one may stand for, likeliest first; none if nothing is near. Upper and
// lower case never matter. Only the best of these groups is returned:
//
// 1. the same name in another case
// 2. names that contain the text, the shortest first
// 3. names at the least edit distance (characters inserted, dropped, replaced, or swapped with their neighbour), if
//    that is at most a third of the length
// 4. names that the text contains, the longest first
KZM_GATEWAY_EXPORT Names Suggest(std::string_view unknown, const Names& known);

// `did you mean "a", "b" or "c"?`, empty for no names.
KZM_GATEWAY_EXPORT std::string DidYouMean(const Names& suggestions);

// `; did you mean "a"?` with what Suggest finds, to be appended to a message; empty if nothing is near.
KZM_GATEWAY_EXPORT std::string Suggestion(std::string_view unknown, const Names& known);

}  // namespace kzm::ModbusGateway
