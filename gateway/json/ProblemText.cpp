#include "gateway/json/ProblemText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kzm::ModbusGateway {

namespace {

constexpr std::size_t LONGEST_CITATION = 40;
constexpr std::size_t MOST_LISTED_NAMES = 20;
constexpr std::size_t LONGEST_COMPARED_NAME = 80;

}  // namespace

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string ListOf(const Names& names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), MOST_LISTED_NAMES); ++i) {
        list += (i == 0 ? "" : ", ") + Quoted(names[i]);
    }
    return names.empty() ? "none" : names.size() > MOST_LISTED_NAMES ? list + ", ..." : list;
}

std::string Cited(const nlohmann::json& value) {
    if (value.is_structured()) {
        return value.is_array() ? "this list" : "this object";
    }
    std::string text = value.dump();
    if (text.size() > LONGEST_CITATION) {
        std::size_t end = LONGEST_CITATION;
        while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {  // not within a UTF-8 sequence
            --end;
        }
        text = text.substr(0, end) + "...";
    }
    return text;
}

std::string Alternatives(std::string_view unknown, const Names& known, const std::string& allowed) {
    std::size_t least = std::max<std::size_t>(2, unknown.size() / 3) + 1;
    std::string nearest;
    for (const auto& name : known) {
        const auto [shorter, longer] = std::minmax({name.size(), unknown.size()});
        if (longer > LONGEST_COMPARED_NAME || longer - shorter >= least) {
            continue;  // differs by that many characters at least
        }
        const std::size_t distance = Distance(unknown, name);
        if (distance < least) {
            least = distance;
            nearest = name;
        }
    }
    return (nearest.empty() ? "; allowed: " : "; did you mean " + Quoted(nearest) + "? Allowed: ") +
           (allowed.empty() ? ListOf(known) : allowed);
}

}  // namespace kzm::ModbusGateway
