#include <algorithm>

#include "gateway/diagnosis/CandidateList.h"

namespace kzm::ModbusGateway {

namespace {

// How many registers are expected to be read right from a value on, and what begins there.
struct Best {
    double registers = 0;
    std::size_t candidate = 0;
    bool isChosen = false;
};

// The list has a value for each register, also for those within a value; `from` and `to` are neighbours only if no
// register is missing between them.
bool AreTogether(const std::vector<Guess::Value>& values, std::size_t from, std::size_t count) {
    const std::size_t last = from + count - 1;
    return last < values.size() && values[last].function == values[from].function &&
           values[last].address - values[from].address == static_cast<int>(count) - 1;
}

// Signed and unsigned are one way to divide the registers.
double ProbabilityOf(const Guess::Value& value, const Guess::Candidate& like) {
    double probability = 0;
    for (const Guess::Candidate& candidate : value.candidates) {
        probability += candidate.count == like.count ? candidate.probability : 0;
    }
    return probability;
}

Best BestOf(const std::vector<Guess::Value>& values, std::size_t from, const std::vector<Best>& rest) {
    Best best{rest[from + 1].registers};
    for (std::size_t i = 0; i < values[from].candidates.size(); ++i) {
        const Guess::Candidate& candidate = values[from].candidates[i];
        if (!AreTogether(values, from, candidate.count)) {
            continue;
        }
        const double registers =
            candidate.count * ProbabilityOf(values[from], candidate) + rest[from + candidate.count].registers;
        if (registers > best.registers) {
            best = {registers, i, true};
        }
    }
    return best;
}

}  // namespace

std::vector<Guess::Choice> DivisionOf(const std::vector<Guess::Value>& values) {
    std::vector<Best> best(values.size() + 1);
    for (std::size_t i = values.size(); i-- > 0;) {
        best[i] = BestOf(values, i, best);
    }
    std::vector<Guess::Choice> division;
    for (std::size_t i = 0; i < values.size();) {
        const std::size_t candidate = best[i].candidate;
        if (best[i].isChosen) {
            division.push_back({i, candidate});
        }
        i += best[i].isChosen ? values[i].candidates[candidate].count : 1;
    }
    return division;
}

}  // namespace kzm::ModbusGateway
