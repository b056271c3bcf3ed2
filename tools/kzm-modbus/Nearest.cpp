#include "Nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace kzm::ModbusTool {

namespace {

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text;
}

// How many characters must be put in, left out or exchanged; 0 when the text contains the other.
std::size_t Distance(const std::string& text, const std::string& wanted) {
    if (text.find(wanted) != text.npos) {
        return 0;
    }
    std::vector<std::size_t> row(wanted.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < wanted.size(); ++j) {
            const std::size_t exchanged = diagonal + (text[i] == wanted[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string NearestTo(const std::string& wanted, const std::vector<std::string>& names) {
    constexpr std::size_t MOST_OFFERED = 3;
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (const std::string& name : names) {
        ranked.emplace_back(Distance(LowerCase(name), LowerCase(wanted)), name);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::string text;
    for (std::size_t i = 0; i < std::min(MOST_OFFERED, ranked.size()); ++i) {
        text += (i == 0 ? "" : ", ") + ranked[i].second;
    }
    return text;
}

}  // namespace kzm::ModbusTool
