#pragma once

#include <array>
#include <vector>

#include "gateway/diagnosis/ValueSpan.h"

namespace kzm::ModbusGateway {

// What the values of one device have in common: it uses few forms, and puts wide values at even or at odd addresses.
struct DeviceHabits {
    DeviceHabits();

    std::array<double, VALUE_FORMS.size()> shares;  // of the forms; their sum is 1
    double evenShare = 0.5;                         // of the values of several registers, by address
};

// How the registers of one run divide into values: weighs every division into spans against all others (the
// forward-backward algorithm over segments).
class Segmentation {
public:
    // `spans` are those of the run, sorted by their first register; there must be one of one register at each.
    Segmentation(const RegisterRun& run, const ValueSpans& spans, const DeviceHabits& habits);

    // The bits of the run, over all divisions.
    double GetBits() const { return mBits; }
    // How probable each span is, in the order of the spans.
    const std::vector<double>& GetProbabilities() const { return mProbabilities; }

private:
    // Logarithms to base 2, by form.
    using ByForm = std::array<double, VALUE_FORMS.size()>;

    double PlaceBits(const ValueSpan& span) const;
    void GoForward();
    void GoBack();

    const RegisterRun& mRun;
    const ValueSpans& mSpans;
    const DeviceHabits& mHabits;
    std::vector<ByForm> mEnding;  // of the divisions up to a position, by the form of their last value
    std::vector<double> mAnyEnding;
    std::vector<double> mReached;  // of the divisions up to and with each span
    double mBits = 0;
    std::vector<double> mProbabilities;
};

}  // namespace kzm::ModbusGateway
