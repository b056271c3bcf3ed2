#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <utility>

#include "gateway/diagnosis/OrderModel.h"

namespace kzm::ModbusGateway {

// How probable it is that a whole number of a device is signed. Numbers beside each other mostly are alike; those of
// several registers are on the whole device.
class SignHabits {
public:
    explicit SignHabits(const OrderModel& model);

    // 0 to 1, of a whole number of the run with that address.
    double GetSignedShare(const RegisterRun& run, const ValueSpan& span) const;

private:
    static constexpr std::size_t FORMS = 3;  // those of whole numbers

    void Add(const RegisterRun& run, const ValueSpan& span);

    WordOrder mOrder;
    std::array<double, FORMS> mSigned{};
    std::array<double, FORMS> mTold{};                                            // numbers that tell their sign
    std::array<std::map<std::pair<const RegisterRun*, int>, int>, FORMS> mSigns;  // 1 or -1, by the first register
};

}  // namespace kzm::ModbusGateway
