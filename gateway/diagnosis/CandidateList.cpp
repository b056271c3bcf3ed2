#include "gateway/diagnosis/CandidateList.h"

#include <algorithm>

#include "gateway/diagnosis/DateLayouts.h"
#include "gateway/diagnosis/Interpretation.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ByteOrderingEnum;

namespace {

constexpr double MAINS_SIGNED = 0.1;  // of voltages and frequencies
constexpr double LEAST_PROBABILITY = 1e-4;
constexpr std::size_t MOST_CANDIDATES = 6;

std::uint64_t HighestBitOf(ValueForm form) {
    return std::uint64_t{1} << (16 * RowOf(form).count - 1);
}

// A scale that makes a usual number of it: mains voltage and frequency.
double UsualScale(ValueForm form, std::uint64_t bits) {
    struct Usual {
        std::uint64_t low, high;
        double scale;
    };
    static constexpr std::array USUAL{Usual{2200, 2450, 0.1},    Usual{3850, 4150, 0.1},    Usual{4980, 5020, 0.01},
                                      Usual{5980, 6020, 0.01},   Usual{498, 502, 0.1},      Usual{598, 602, 0.1},
                                      Usual{22000, 24500, 0.01}, Usual{49800, 50200, 0.001}};
    const auto found =
        std::ranges::find_if(USUAL, [&](const Usual& usual) { return bits >= usual.low && bits <= usual.high; });
    return IsInteger(form) && found != USUAL.end() ? found->scale : 1;
}

nlohmann::json ValueOf(const Guess::Candidate& candidate, const RegisterRun& run, const ValueSpan& span,
                       WordOrder order) {
    if (span.form == ValueForm::DATE || IsUnixTime(span.form)) {
        return DateTextOf(span, run, order);
    }
    if (!IsInteger(span.form) && !IsFloat(span.form)) {
        return TextOf(span, run);
    }
    const Interpretation interpretation{
        candidate.type, static_cast<std::uint8_t>(candidate.count),
        order == WordOrder::BIG ? ByteOrderingEnum::BIG_ENDIAN_WORDS : ByteOrderingEnum::LITTLE_ENDIAN_WORDS};
    const auto offset = static_cast<float>(candidate.offset);
    const auto value = interpretation.ValueOf(run.At(0, span.first, span.count), candidate.scale, offset);
    if (!value.is_number_float()) {
        return value;
    }
    return RoundedTo(value.get<double>(), interpretation.GetPrecision(candidate.scale, offset));
}

}  // namespace

void CandidateLists::Add(const OrderModel& model, double share) {
    const SignHabits signs(model);
    for (const auto& run : model.GetRuns()) {
        for (std::size_t i = 0; i < run.registers->GetSize(); ++i) {
            mLists[{run.registers->function, static_cast<std::uint16_t>(run.registers->address + i)}];
        }
        for (std::size_t i = 0; i < run.spans.size(); ++i) {
            const double probability = run.probabilities[i] * share;
            if (probability >= LEAST_PROBABILITY) {
                Reading reading{*run.registers, run.spans[i], model.GetOrder(), signs, 0, {}};
                reading.candidate.probability = probability;
                AddSpan(reading);
            }
        }
    }
}

void CandidateLists::AddBits(const RegisterRun& run) {
    for (std::size_t i = 0; i < run.GetSize(); ++i) {
        Guess::Candidate candidate{.type = "boolean", .order = {}, .probability = 1};
        candidate.value = run.snapshots.front()[i] != 0;
        mLists[{run.function, static_cast<std::uint16_t>(run.address + i)}].push_back(std::move(candidate));
    }
}

void CandidateLists::AddSpan(Reading& reading) {
    const ValueSpan& span = reading.span;
    const ValueFormRow& row = RowOf(span.form);
    Guess::Candidate& candidate = reading.candidate;
    candidate.type = span.form == ValueForm::DATE ? DATE_LAYOUTS[span.layout].type : row.unsignedType;
    candidate.count = span.count;
    if (span.count > 1) {
        // Texts and dates in fields are never exchanged.
        candidate.order = reading.order == WordOrder::BIG || row.count == 0 ? "big" : "little";
    }
    if (!IsInteger(span.form)) {
        candidate.isInvalid = IsFloat(span.form) &&
                              IsInvalid(span.form, BitsOf(reading.run.At(0, span.first, span.count), reading.order));
        Expect(reading);
        AddCandidate(reading);
        return;
    }
    AddInteger(reading);
}

void CandidateLists::AddInteger(Reading& reading) {
    const ValueSpan& span = reading.span;
    Guess::Candidate& candidate = reading.candidate;
    const auto bits = BitsOf(reading.run.At(0, span.first, span.count), reading.order);
    candidate.isInvalid = IsInvalid(span.form, bits);
    candidate.scale = UsualScale(span.form, bits);
    reading.signedShare = candidate.scale == 1 ? reading.signs.GetSignedShare(reading.run, span) : MAINS_SIGNED;
    Expect(reading);
    const double probability = candidate.probability;
    candidate.probability = probability * (1 - reading.signedShare);
    AddCandidate(reading);
    candidate.type = RowOf(span.form).signedType;
    candidate.probability = probability * reading.signedShare;
    AddCandidate(reading);
}

void CandidateLists::Expect(Reading& reading) const {
    for (const Expectation& expectation : mExpectations) {
        const auto match = expectation.address == reading.run.address + reading.span.first
                               ? Match(expectation, reading.span, reading.run, reading.order)
                               : std::nullopt;
        if (!match) {
            continue;
        }
        reading.candidate.scale = match->scale;
        reading.candidate.offset = match->offset;
        if (match->isSigned) {
            reading.signedShare = 0.99;
        } else if (IsInteger(reading.span.form) && match->raw >= static_cast<double>(HighestBitOf(reading.span.form))) {
            reading.signedShare = 0.01;
        }
    }
}

void CandidateLists::AddCandidate(const Reading& reading) {
    const auto& candidate = reading.candidate;
    auto& list = mLists[{reading.run.function, static_cast<std::uint16_t>(reading.run.address + reading.span.first)}];
    const auto same = std::ranges::find_if(list, [&](const Guess::Candidate& other) {
        return other.type == candidate.type && other.count == candidate.count && other.order == candidate.order;
    });
    if (same != list.end()) {
        same->probability += candidate.probability;
        return;
    }
    list.push_back(candidate);
    list.back().value = ValueOf(candidate, reading.run, reading.span, reading.order);
}

std::vector<Guess::Value> CandidateLists::GetValues() {
    std::vector<Guess::Value> values;
    for (auto& [place, list] : mLists) {
        std::ranges::stable_sort(list, std::ranges::greater(), &Guess::Candidate::probability);
        list.resize(std::min(list.size(), MOST_CANDIDATES));
        values.push_back({place.first, place.second, std::move(list)});
    }
    return values;
}

}  // namespace kzm::ModbusGateway
