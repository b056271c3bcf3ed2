#include "gateway/diagnosis/ExpectationMatch.h"

#include <array>
#include <bit>
#include <cmath>

namespace kzm::ModbusGateway {

namespace {

constexpr double SHOWN_BITS = 24;    // what an expectation is worth
constexpr double DOUBT_64_BITS = 2;  // zeros after a number are rather another value than a part of it

double NumberOf(ValueForm form, std::uint64_t bits, bool isSigned) {
    if (form == ValueForm::FLOAT32) {
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    }
    if (form == ValueForm::FLOAT64) {
        return std::bit_cast<double>(bits);
    }
    const int unused = 64 - 16 * RowOf(form).count;
    return isSigned ? static_cast<double>(static_cast<std::int64_t>(bits << unused) >> unused)
                    : static_cast<double>(bits);
}

// The bits of how far a number is from what is expected: rounded alike, or read a moment later.
std::optional<double> BitsForDistance(const Expectation& expectation, double number) {
    const double distance = std::fabs(number - expectation.value);
    const double size = std::fabs(expectation.value);
    if (distance <= expectation.tolerance + 1e-6 * size) {
        return 0.0;
    }
    if (distance <= 2.1 * expectation.tolerance) {
        return 3.0;
    }
    return distance <= 0.005 * size ? std::optional(9.0) : std::nullopt;
}

// Powers of ten; those that devices use first.
double BitsForScale(ValueForm form, int exponent) {
    if (IsFloat(form)) {
        return exponent == 0 ? 0 : 5 + std::abs(exponent);
    }
    return std::abs(exponent) * (exponent > 0 ? 2.0 : 0.7);
}

void Consider(const Expectation& expectation, ValueForm form, double raw, bool isSigned,
              std::optional<ExpectationMatch>& best) {
    for (int exponent = -6; exponent <= 6; ++exponent) {
        const double scale = exponent < 0 ? 1 / std::pow(10.0, -exponent) : std::pow(10.0, exponent);
        const auto distance = BitsForDistance(expectation, raw * scale);
        const double bits = distance.value_or(0) + BitsForScale(form, exponent) + (isSigned ? 0.1 : 0);
        if (distance && (!best || bits < best->bits)) {
            best = ExpectationMatch{scale, 0, isSigned, raw, bits};
        }
    }
}

void ConsiderOffsets(const Expectation& expectation, ValueForm form, double raw,
                     std::optional<ExpectationMatch>& best) {
    for (const double offset : {-40.0, -50.0, -100.0, -273.15}) {
        for (const double scale : {1.0, 0.1, 0.01}) {
            const auto distance = BitsForDistance(expectation, raw * scale + offset);
            if (form == ValueForm::INTEGER16 && !best && distance && *distance < 9) {
                best = ExpectationMatch{scale, offset, false, raw, 12 + *distance};
            }
        }
    }
}

}  // namespace

std::optional<ExpectationMatch> Match(const Expectation& expectation, const ValueSpan& span, const RegisterRun& run,
                                      WordOrder order) {
    std::optional<ExpectationMatch> best;
    if (!IsInteger(span.form) && !IsFloat(span.form)) {
        return best;
    }
    for (std::size_t i = 0; i < run.snapshots.size(); ++i) {
        const auto bits = BitsOf(run.At(i, span.first, span.count), order);
        for (const bool isSigned : {false, true}) {
            Consider(expectation, span.form, NumberOf(span.form, bits, isSigned), isSigned, best);
        }
        ConsiderOffsets(expectation, span.form, NumberOf(span.form, bits, false), best);
    }
    return best;
}

void Apply(const Expectations& expectations, const RegisterRun& run, WordOrder order, ValueSpans& spans) {
    for (const Expectation& expectation : expectations) {
        const int position = expectation.address - run.address;
        std::vector<double> extra;
        bool isShown = false;
        for (const ValueSpan& span : spans) {
            const bool covers = span.first <= position && position < span.first + span.count;
            const auto match = span.first == position ? Match(expectation, span, run, order) : std::nullopt;
            isShown = isShown || match;
            const double otherwise = covers ? SHOWN_BITS : 0;
            const double doubt = span.form == ValueForm::INTEGER64 ? DOUBT_64_BITS : 0;
            extra.push_back(match ? match->bits + doubt - SHOWN_BITS : otherwise);
        }
        for (std::size_t i = 0; isShown && i < spans.size(); ++i) {
            spans[i].bits += extra[i];
            spans[i].bitsBeside += extra[i];
        }
    }
}

}  // namespace kzm::ModbusGateway
