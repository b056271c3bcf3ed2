#include "gateway/json/Suggestions.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace kzm::ModbusGateway {

namespace {

constexpr std::size_t MOST_OFFERED = 3;
constexpr std::size_t LONGEST_WANTED = 200;

std::string LowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return result;
}

}  // namespace

std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t exchanged = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

std::string NearestTo(std::string_view wanted, const Names& names) {
    const std::string text = LowerCase(wanted.substr(0, LONGEST_WANTED));
    std::vector<std::pair<std::size_t, std::string_view>> ranked;
    for (const std::string& name : names) {
        const std::string known = LowerCase(name);
        ranked.emplace_back(known.find(text) == known.npos ? Distance(known, text) : 0, name);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::string list;
    for (std::size_t i = 0; i < std::min(MOST_OFFERED, ranked.size()); ++i) {
        list += (i == 0 ? "" : ", ");
        list += ranked[i].second;
    }
    return list;
}

}  // namespace kzm::ModbusGateway
