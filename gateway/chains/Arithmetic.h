#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "Support/Status.h"
#include "gateway/chains/ChainCall.h"
#include "gateway/chains/ExponentLimit.h"
#include "gateway/chains/NumberOrder.h"

// What the chains that calculate compute. OUT_OF_RANGE: the result is too large for its type; NOT_AVAILABLE: division
// by zero.
namespace kzm::ModbusGateway::Arithmetic {

namespace Status = ModbusDeviceModel::Status;
using kz::orba::StatusCode;
using nlohmann::json;

struct Plus {
    static double Of(double left, double right) { return left + right; }
    static bool Overflows(auto left, auto right, auto& sum) { return __builtin_add_overflow(left, right, &sum); }
};

struct Minus {
    static double Of(double left, double right) { return left - right; }
    static bool Overflows(auto left, auto right, auto& rest) { return __builtin_sub_overflow(left, right, &rest); }
};

struct Times {
    static double Of(double left, double right) { return left * right; }
    static bool Overflows(auto left, auto right, auto& product) {
        return __builtin_mul_overflow(left, right, &product);
    }
};

inline StatusCode Give(double number, json& result) {
    if (!std::isfinite(number)) {
        return Status::OUT_OF_RANGE;
    }
    result = number;
    return Status::SUCCESS;
}

// Whole numbers are computed as such, in as many bits as it takes; the result must fit a signed or unsigned one.
template <typename Operation>
StatusCode ApplyToIntegers(auto left, auto right, json& result) {
    std::int64_t number = 0;
    std::uint64_t largeNumber = 0;
    if (!Operation::Overflows(left, right, number)) {
        result = number;
    } else if (!Operation::Overflows(left, right, largeNumber)) {
        result = largeNumber;
    } else {
        return Status::OUT_OF_RANGE;
    }
    return Status::SUCCESS;
}

template <typename Operation>
StatusCode Apply(const json& left, const json& right, json& result) {
    if (!left.is_number_integer() || !right.is_number_integer()) {
        return Give(Operation::Of(left.get<double>(), right.get<double>()), result);
    }
    const auto withLeft = [&](auto number) {
        return right.is_number_unsigned() ? ApplyToIntegers<Operation>(number, right.get<std::uint64_t>(), result)
                                          : ApplyToIntegers<Operation>(number, right.get<std::int64_t>(), result);
    };
    return left.is_number_unsigned() ? withLeft(left.get<std::uint64_t>()) : withLeft(left.get<std::int64_t>());
}

template <typename Operation>
StatusCode Fold(const ChainCall& call, json& result) {
    result = call[0];
    auto status = Status::SUCCESS;
    for (std::size_t i = 1; i < call.inputs.size() && status == Status::SUCCESS; ++i) {
        status = Apply<Operation>(result, call[i], result);
    }
    return status;
}

// The input that comes last in an order, or first.
template <int ORDER>
StatusCode Extreme(const ChainCall& call, json& result) {
    result = call[0];
    for (std::size_t i = 1; i < call.inputs.size(); ++i) {
        if (OrderOf(call[i], result, 0) == ORDER) {
            result = call[i];
        }
    }
    return Status::SUCCESS;
}

inline StatusCode Quotient(const ChainCall& call, json& result) {
    const auto divisor = call[1].get<double>();
    return divisor == 0 ? Status::NOT_AVAILABLE : Give(call[0].get<double>() / divisor, result);
}

inline double AverageOf(const ChainCall& call) {
    double sum = 0;
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        sum += call[i].get<double>();
    }
    return sum / static_cast<double>(call.inputs.size());
}

inline StatusCode Average(const ChainCall& call, json& result) {
    return Give(AverageOf(call), result);
}

inline StatusCode Unbalance(const ChainCall& call, json& result) {
    const double average = AverageOf(call);
    double deviation = 0;
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        deviation = std::max(deviation, std::fabs(call[i].get<double>() - average));
    }
    return average == 0 ? Status::NOT_AVAILABLE : Give(100 * deviation / std::fabs(average), result);
}

inline StatusCode Hypotenuse(const ChainCall& call, json& result) {
    double root = 0;
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        root = std::hypot(root, call[i].get<double>());
    }
    return Give(root, result);
}

inline StatusCode Linear(const ChainCall& call, json& result) {
    const auto status = Apply<Times>(call[0], call.settings.factor, result);
    return status == Status::SUCCESS ? Apply<Plus>(result, call.settings.offset, result) : status;
}

inline StatusCode Scale10(const ChainCall& call, json& result) {
    if (OrderOf(call[1], 0, MAX_EXPONENT) != 0) {
        return Status::OUT_OF_RANGE;
    }
    const int exponent = call[1].get<int>();
    double power = 1;
    for (int i = 0; i < std::abs(exponent); ++i) {
        power *= 10;
    }
    const auto number = call[0].get<double>();
    return Give(exponent < 0 ? number / power : number * power, result);
}

}  // namespace kzm::ModbusGateway::Arithmetic
