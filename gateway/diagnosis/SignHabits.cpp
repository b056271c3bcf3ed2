#include "gateway/diagnosis/SignHabits.h"

namespace kzm::ModbusGateway {

namespace {

constexpr double SURELY_SIGNED = 0.9;
constexpr double SURELY_UNSIGNED = 0.1;  // no evidence of the sign is ever complete
constexpr double USUALLY_SIGNED = 0.3;
constexpr double PRIOR_NUMBERS = 4;    // how many numbers the usual share is worth
constexpr double NEIGHBOUR_WORTH = 4;  // how many numbers anywhere a neighbour is worth
constexpr int NEIGHBOURS = 3;          // on either side

std::uint64_t HighestBitOf(ValueForm form) {
    return std::uint64_t{1} << (16 * RowOf(form).count - 1);
}

// Whether a whole number can hardly be but signed (1), or unsigned (-1): negative numbers are small, and each sign has
// a pattern of "not available".
int SignOf(ValueForm form, std::uint64_t bits) {
    const std::uint64_t highest = HighestBitOf(form);
    if (bits == highest || bits == highest - 1) {
        return 1;
    }
    if (bits < highest) {
        return 0;
    }
    const bool isSmall = 2 * (highest - 1) + 2 - bits < highest / (form == ValueForm::INTEGER16 ? 3 : 8);
    return isSmall && bits != highest + (highest - 1) ? 1 : -1;
}

// The same over all snapshots; the last one that tells.
int SignOf(const RegisterRun& run, const ValueSpan& span, WordOrder order) {
    int sign = 0;
    for (std::size_t i = 0; i < run.snapshots.size(); ++i) {
        const int now = SignOf(span.form, BitsOf(run.At(i, span.first, span.count), order));
        sign = now != 0 ? now : sign;
    }
    return sign;
}

std::size_t IndexOf(ValueForm form) {
    return static_cast<std::size_t>(form);
}

}  // namespace

SignHabits::SignHabits(const OrderModel& model) : mOrder(model.GetOrder()) {
    for (const auto& run : model.GetRuns()) {
        for (std::size_t i = 0; i < run.spans.size(); ++i) {
            if (IsInteger(run.spans[i].form) && run.probabilities[i] > 0.5) {
                Add(*run.registers, run.spans[i]);
            }
        }
    }
}

void SignHabits::Add(const RegisterRun& run, const ValueSpan& span) {
    const std::size_t form = IndexOf(span.form);
    if (const int sign = SignOf(run, span, mOrder); sign != 0) {
        mSigned[form] += sign > 0 ? 1 : 0;
        mTold[form] += 1;
        mSigns[form][{&run, span.first}] = sign;
    }
}

double SignHabits::GetSignedShare(const RegisterRun& run, const ValueSpan& span) const {
    if (const int sign = SignOf(run, span, mOrder); sign != 0) {
        return sign > 0 ? SURELY_SIGNED : SURELY_UNSIGNED;
    }
    const std::size_t form = IndexOf(span.form);
    // Numbers of one register are of many kinds: those elsewhere say nothing.
    const double elsewhere = span.form == ValueForm::INTEGER16 ? 0 : 1;
    double isSigned = USUALLY_SIGNED * PRIOR_NUMBERS + elsewhere * mSigned[form];
    double told = PRIOR_NUMBERS + elsewhere * mTold[form];
    for (int i = -NEIGHBOURS; i <= NEIGHBOURS; ++i) {
        const auto neighbour = mSigns[form].find({&run, span.first + i * span.count});
        if (neighbour != mSigns[form].end()) {
            isSigned += neighbour->second > 0 ? NEIGHBOUR_WORTH : 0;
            told += NEIGHBOUR_WORTH;
        }
    }
    return isSigned / told;
}

}  // namespace kzm::ModbusGateway
