#include "gateway/json/Problem.h"

#include <algorithm>
#include <tuple>

namespace kzm::ModbusGateway {

namespace {

auto OrderOf(const Problem& problem) {
    return std::tie(problem.line, problem.pointer, problem.message);
}

}  // namespace

bool HasError(const Problems& problems) {
    return std::any_of(problems.begin(), problems.end(),
                       [](const Problem& problem) { return problem.severity == Problem::Severity::ERROR; });
}

void SortByLine(Problems& problems) {
    std::sort(problems.begin(), problems.end(),
              [](const Problem& left, const Problem& right) { return OrderOf(left) < OrderOf(right); });
    const auto end = std::unique(problems.begin(), problems.end(), [](const Problem& left, const Problem& right) {
        return OrderOf(left) == OrderOf(right);
    });
    problems.erase(end, problems.end());
}

}  // namespace kzm::ModbusGateway
