#include "gateway/json/Suggestions.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

namespace {

constexpr std::size_t MOST_SUGGESTED = 3;
constexpr std::size_t LONGEST_COMPARED = 80;   // edit distance takes time quadratic in the length
constexpr std::size_t SHORTEST_CONTAINED = 2;  // every other name contains a given letter

// Smaller is likelier; the group first, then the order within it.
using Rank = std::pair<int, std::size_t>;
constexpr int UNLIKELY = 5;

std::string LowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return result;
}

// The "optimal string alignment" distance; anything above `limit` for texts that are further apart than that.
std::size_t Distance(std::string_view left, std::string_view right, std::size_t limit) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            row[j] = std::min({last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1), row[j - 1] + 1, last[j] + 1});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        if (*std::min_element(row.begin(), row.end()) > limit) {
            return limit + 1;
        }
    }
    return row.back();
}

Rank RankOf(const std::string& known, const std::string& text) {
    if (known == text) {
        return {1, 0};
    }
    if (text.size() >= SHORTEST_CONTAINED && known.find(text) != known.npos) {
        return {2, known.size()};
    }
    const std::size_t limit = (text.size() + 1) / 3;
    const auto [shorter, longer] = std::minmax({known.size(), text.size()});
    if (longer <= LONGEST_COMPARED && longer - shorter <= limit) {
        const std::size_t distance = Distance(known, text, limit);
        if (distance <= limit) {
            return {3, distance};
        }
    }
    return known.size() > SHORTEST_CONTAINED && text.find(known) != text.npos ? Rank{4, text.size() - known.size()}
                                                                              : Rank{UNLIKELY, 0};
}

}  // namespace

Names Suggest(std::string_view unknown, const Names& known) {
    const std::string text = LowerCase(unknown);
    std::vector<std::pair<Rank, const std::string*>> ranked;
    for (const std::string& name : known) {
        const Rank rank = RankOf(LowerCase(name), text);
        if (rank.first != UNLIKELY) {
            ranked.emplace_back(rank, &name);
        }
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    Names suggestions;
    for (const auto& [rank, name] : ranked) {
        const Rank best = ranked.front().first;
        const bool isBest = rank.first == best.first && (rank.first != 3 || rank.second == best.second);
        if (isBest && suggestions.size() < MOST_SUGGESTED &&
            std::find(suggestions.begin(), suggestions.end(), *name) == suggestions.end()) {
            suggestions.push_back(*name);
        }
    }
    return suggestions;
}

std::string DidYouMean(const Names& suggestions) {
    std::string list;
    for (std::size_t i = 0; i < suggestions.size(); ++i) {
        const char* const separator = i + 1 == suggestions.size() ? " or " : ", ";
        list += (i == 0 ? "" : separator) + Quoted(suggestions[i]);
    }
    return list.empty() ? "" : "did you mean " + list + '?';
}

std::string Suggestion(std::string_view unknown, const Names& known) {
    const std::string question = DidYouMean(Suggest(unknown, known));
    return question.empty() ? "" : "; " + question;
}

}  // namespace kzm::ModbusGateway
