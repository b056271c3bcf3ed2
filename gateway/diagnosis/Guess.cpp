#include "gateway/diagnosis/Guess.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <iterator>
#include <stdexcept>

#include "gateway/diagnosis/CandidateList.h"
#include "gateway/diagnosis/OrderEvidence.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusGateway {

using nlohmann::json;

namespace {

// The order is decided if it explains the registers by so many bits better than the other one, and by so much more for
// each bit by which even the other one explains them better than single registers do: chance does as much, up to a
// limit.
constexpr double DECIDED_BITS = 3;
constexpr double DECIDED_SHARE = 0.1;
constexpr double MOST_CHANCE_BITS = 12;
constexpr double SUNSPEC_BITS = 24;
constexpr double TRUST = 0.7;  // in these bits: the values of one device are alike

void CheckExpectations(const Expectations& expectations, const RegisterRuns& registers) {
    for (const Expectation& expectation : expectations) {
        const std::uint16_t address = expectation.address;
        const auto functions = std::ranges::count_if(registers.runs, [&](const RegisterRun& run) {
            return run.IsOfRegisters() && address >= run.address &&
                   address - run.address < static_cast<int>(run.GetSize());
        });
        if (functions == 0) {
            throw std::invalid_argument("register " + std::to_string(address) + " is not in the capture");
        }
        if (std::ranges::count(expectations, address, &Expectation::address) > functions) {
            throw std::invalid_argument("register " + std::to_string(address) + " is expected to show two values");
        }
    }
}

// Whether a SunSpec map begins in a run: its values have the most significant register first. The first model has the
// number 1, 65 or 66 registers, and begins with the maker's name.
bool HasSunSpecModels(const RegisterRun& run) {
    const auto& words = run.snapshots.front();
    for (std::size_t i = 2; i < words.size(); ++i) {
        const bool isMark = words[i - 2] == 0x5375 && words[i - 1] == 0x6E53;
        const bool isFirst = words[i - 2] == 1 && (words[i - 1] == 65 || words[i - 1] == 66) && words[i] >= 0x2020;
        if (isMark || isFirst) {
            return true;
        }
    }
    return false;
}

// Whether texts begin where such a map usually has the maker's name, the model and the serial number. The frames of a
// capture may lack its mark.
bool HasSunSpecTexts(const RegisterRun& run) {
    return std::ranges::all_of(std::array{40004, 40020, 40052}, [&](int address) {
        const auto position = static_cast<std::size_t>(address - run.address);
        const auto& words = run.snapshots.front();
        return address >= run.address && position < words.size() && std::isalnum(words[position] >> 8) != 0;
    });
}

// What makes the order.
struct Vote {
    double advantage;  // bits by which the most significant register first explains more; negative for the other order
    double chance;     // bits that the worse order explains of wide values at all
    bool isSunSpec;

    bool IsDecided() const {
        return std::fabs(advantage) >= DECIDED_BITS + std::clamp(DECIDED_SHARE * chance, 0.0, MOST_CHANCE_BITS);
    }
    double GetBigShare() const { return 1 / (1 + std::exp2(-TRUST * advantage)); }
};

Vote VoteOf(const OrderModel& big, const OrderModel& little, const OrderModel& none, const RegisterRuns& registers) {
    const bool isSunSpec = std::ranges::any_of(
        registers.runs, [](const RegisterRun& run) { return HasSunSpecModels(run) || HasSunSpecTexts(run); });
    return {little.GetBits() - big.GetBits() + (isSunSpec ? SUNSPEC_BITS : 0),
            none.GetBits() - std::max(big.GetBits(), little.GetBits()), isSunSpec};
}

std::vector<std::string> EvidenceOf(const Vote& vote, const OrderModel& better) {
    std::vector<std::string> evidence;
    if (vote.isSunSpec) {
        evidence.emplace_back("the registers are those of a SunSpec map, which has the high word first");
    }
    std::ranges::move(EvidenceFor(better), std::back_inserter(evidence));
    if (!vote.IsDecided()) {
        evidence.emplace_back(evidence.empty() ? "no value surely takes several registers"
                                               : "the other order explains the registers nearly as well");
    }
    return evidence;
}

bool IsShown(const Expectation& expectation, const OrderModel& model) {
    return std::ranges::any_of(model.GetRuns(), [&](const OrderModel::Run& run) {
        return std::ranges::any_of(run.spans, [&](const ValueSpan& span) {
            return run.registers->address + span.first == expectation.address &&
                   Match(expectation, span, *run.registers, model.GetOrder());
        });
    });
}

void AddExpected(const Expectations& expectations, const OrderModel& big, const OrderModel& little,
                 std::vector<std::string>& evidence) {
    for (const Expectation& expectation : expectations) {
        const bool asBig = IsShown(expectation, big);
        const bool asLittle = IsShown(expectation, little);
        std::string text = "register " + std::to_string(expectation.address) +
                           (asBig || asLittle ? " can show " : " shows ") +
                           NumberText(expectation.value, NumberPrecision::DIGITS_15);
        if (asBig != asLittle) {
            text += asBig ? " with the high word first only" : " with the low word first only";
        }
        evidence.push_back(text + (asBig || asLittle ? "" : " in no type, order and scale"));
    }
}

json TextOrNull(const std::string& text) {
    return text.empty() ? json() : json(text);
}

json ToJson(const Guess::Candidate& candidate) {
    return {{"type", candidate.type},
            {"count", candidate.count},
            {"order", TextOrNull(candidate.order)},
            {"scale", candidate.scale},
            {"offset", candidate.offset},
            {"invalid", candidate.isInvalid},
            {"probability", std::round(candidate.probability * 1e4) / 1e4},
            {"value", candidate.value}};
}

}  // namespace

Guess Guess::Of(const Capture& capture, const Expectations& expectations) {
    const RegisterRuns registers = RegisterRuns::Of(capture.frames, capture.snapshots);
    CheckExpectations(expectations, registers);
    const OrderModel big(registers, WordOrder::BIG, expectations);
    const OrderModel little(registers, WordOrder::LITTLE, expectations);
    const OrderModel none(registers, WordOrder::NONE, expectations);
    const Vote vote = VoteOf(big, little, none, registers);
    Guess guess;
    if (vote.IsDecided()) {
        guess.order = vote.advantage > 0 ? "big" : "little";
    }
    guess.evidence = EvidenceOf(vote, vote.advantage > 0 ? big : little);
    AddExpected(expectations, big, little, guess.evidence);
    CandidateLists lists(expectations);
    lists.Add(big, vote.GetBigShare());
    lists.Add(little, 1 - vote.GetBigShare());
    for (const RegisterRun& run : registers.runs) {
        if (!run.IsOfRegisters()) {
            lists.AddBits(run);
        }
    }
    guess.values = lists.GetValues();
    guess.division = DivisionOf(guess.values);
    return guess;
}

json Guess::ToJson() const {
    json list = json::array();
    for (const Value& value : values) {
        json candidates = json::array();
        for (const Candidate& candidate : value.candidates) {
            candidates.push_back(ModbusGateway::ToJson(candidate));
        }
        list.push_back({{"function", value.function}, {"address", value.address}, {"candidates", candidates}});
    }
    return {{"order", TextOrNull(order)}, {"evidence", evidence}, {"values", list}};
}

}  // namespace kzm::ModbusGateway
