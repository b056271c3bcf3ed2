#include "gateway/json/ProblemText.h"

#include <nlohmann/json.hpp>
#include <set>

namespace kzm::ModbusGateway {

namespace {

constexpr std::size_t LONGEST_QUOTE = 200;
constexpr std::size_t LONGEST_CITATION = 40;
constexpr std::size_t MOST_LISTED_NAMES = 20;

std::string Shortened(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return std::string(text);
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {  // not within a UTF-8 sequence
        --end;
    }
    return std::string(text.substr(0, end)) + "...";
}

}  // namespace

std::string Quoted(std::string_view text) {
    return '"' + Shortened(text, LONGEST_QUOTE) + '"';
}

std::string ListOf(const Names& names) {
    std::set<std::string_view> listed;
    std::string list;
    for (const std::string& name : names) {
        if (!listed.insert(name).second) {
            continue;
        }
        if (listed.size() > MOST_LISTED_NAMES) {
            return list + ", ...";
        }
        list += (list.empty() ? "" : ", ") + Quoted(name);
    }
    return list.empty() ? "none" : list;
}

std::string Cited(const nlohmann::json& value) {
    if (value.is_structured()) {
        return value.is_array() ? "this list" : "this object";
    }
    return Shortened(value.dump(), LONGEST_CITATION);
}

std::string Alternatives(std::string_view unknown, const Names& known, const std::string& allowed) {
    const std::string suggestion = Suggestion(unknown, known);
    const std::string list = allowed.empty() ? ListOf(known) : allowed;
    return suggestion.empty() ? "; allowed: " + list : suggestion + " Allowed: " + list;
}

}  // namespace kzm::ModbusGateway
