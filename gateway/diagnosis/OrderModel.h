#pragma once

#include "gateway/diagnosis/ExpectationMatch.h"
#include "gateway/diagnosis/Segmentation.h"

namespace kzm::ModbusGateway {

// All registers of a device read in one word order: what values they may hold, with the habits of the device learnt
// from them.
class OrderModel {
public:
    OrderModel(const RegisterRuns& registers, WordOrder order, const Expectations& expectations);

    WordOrder GetOrder() const { return mOrder; }
    // How many bits the registers take in this order.
    double GetBits() const { return mBits; }

    struct Run {
        const RegisterRun* registers;
        ValueSpans spans;
        std::vector<double> probabilities;  // one per span
    };
    const std::vector<Run>& GetRuns() const { return mRuns; }

private:
    void Weigh();
    DeviceHabits LearntHabits() const;

    WordOrder mOrder;
    DeviceHabits mHabits;
    std::vector<Run> mRuns;
    double mBits = 0;
};

}  // namespace kzm::ModbusGateway
