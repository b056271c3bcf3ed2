#include "gateway/diagnosis/Segmentation.h"

#include <cmath>
#include <limits>

#include "gateway/diagnosis/CodeLength.h"

namespace kzm::ModbusGateway {

namespace {

constexpr double IMPOSSIBLE = 1e9;  // bits
constexpr double AGAIN = 0.7;       // how often a value is of the same form as the one before because of that alone
constexpr double CUT_BITS = 5.0;    // a value that lies in two frames

std::size_t IndexOf(ValueForm form) {
    return static_cast<std::size_t>(form);
}

}  // namespace

DeviceHabits::DeviceHabits() {
    double sum = 0;
    for (const ValueFormRow& row : VALUE_FORMS) {
        sum += row.share;
    }
    for (const ValueFormRow& row : VALUE_FORMS) {
        shares[IndexOf(row.form)] = row.share / sum;
    }
}

Segmentation::Segmentation(const RegisterRun& run, const ValueSpans& spans, const DeviceHabits& habits)
    : mRun(run), mSpans(spans), mHabits(habits) {
    GoForward();
    GoBack();
}

double Segmentation::PlaceBits(const ValueSpan& span) const {
    double bits = 0;
    if (span.count > 1) {
        const bool isEven = (mRun.address + span.first) % 2 == 0;
        bits -= std::log2(2 * (isEven ? mHabits.evenShare : 1 - mHabits.evenShare));
    }
    for (std::size_t i = span.first + 1U; i < static_cast<std::size_t>(span.first) + span.count; ++i) {
        bits += mRun.isFrameStart[i] ? CUT_BITS : 0;
    }
    return bits;
}

void Segmentation::GoForward() {
    ByForm none;
    none.fill(IMPOSSIBLE);
    mEnding.assign(mRun.GetSize() + 1, none);
    mAnyEnding.assign(mRun.GetSize() + 1, IMPOSSIBLE);
    mAnyEnding[0] = std::log2(1 - AGAIN);
    for (const ValueSpan& span : mSpans) {
        const std::size_t form = IndexOf(span.form);
        const double fresh = mAnyEnding[span.first] - std::log2((1 - AGAIN) * mHabits.shares[form]) + span.bits;
        const double again = mEnding[span.first][form] - std::log2(AGAIN) + span.bitsBeside;
        const double bits = EitherOf(fresh, again) + PlaceBits(span);
        mReached.push_back(bits);
        const std::size_t end = span.first + span.count;
        mEnding[end][form] = EitherOf(mEnding[end][form], bits);
        mAnyEnding[end] = EitherOf(mAnyEnding[end], bits);
    }
    mBits = mAnyEnding.back();
}

void Segmentation::GoBack() {
    ByForm none;
    none.fill(IMPOSSIBLE);
    std::vector<ByForm> again(mRun.GetSize() + 1, none);        // what follows, if its form is the same
    std::vector<double> fresh(mRun.GetSize() + 1, IMPOSSIBLE);  // what follows, whatever came before
    fresh.back() = 0;
    mProbabilities.resize(mSpans.size());
    for (std::size_t i = mSpans.size(); i-- > 0;) {
        const ValueSpan& span = mSpans[i];
        const std::size_t form = IndexOf(span.form);
        const std::size_t end = span.first + span.count;
        const double rest = EitherOf(fresh[end], again[end][form]);
        mProbabilities[i] = std::exp2(mBits - mReached[i] - rest);
        const double place = PlaceBits(span) + rest;
        fresh[span.first] =
            EitherOf(fresh[span.first], place + span.bits - std::log2((1 - AGAIN) * mHabits.shares[form]));
        again[span.first][form] = EitherOf(again[span.first][form], place + span.bitsBeside - std::log2(AGAIN));
    }
}

}  // namespace kzm::ModbusGateway
