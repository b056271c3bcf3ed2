#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>

#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

// The range of an output type, both ends included. The upper end of a 64-bit integer type is the double just above its
// largest number.
struct OutputRange {
    double low;
    double high;

    bool Holds(double number) const { return number >= low && number <= high; }
};

constexpr OutputRange RangeOf(DeviceProfile::Output output) {
    using enum DeviceProfile::Output;
    constexpr double FLOAT_END = std::numeric_limits<float>::max();
    switch (output) {
        case U8:
            return {0, 255};
        case U16:
            return {0, 65535};
        case U32:
            return {0, 4294967295};
        case U64:
            return {0, 0x1p64};
        case S16:
            return {-32768, 32767};
        case S32:
            return {-2147483648.0, 2147483647};
        case S64:
        case S64_AS_FLOAT:
            return {-0x1p63, 0x1p63};
        case FLOAT:
            return {-FLOAT_END, FLOAT_END};
        case NONE:
            break;
    }
    return {1, 0};
}

// The upper end of the range, which the integer type cannot hold, becomes the largest number that it can.
template <typename Integer>
Integer RoundTo(double number, double end) {
    return number >= end ? std::numeric_limits<Integer>::max() : static_cast<Integer>(std::round(number));
}

// A number as JSON of an output type: integers rounded half away from zero, floating point unchanged. Null for a number
// that is not finite or not in the range of the type; the range is tested before rounding.
inline nlohmann::json Emit(DeviceProfile::Output output, double number) {
    using enum DeviceProfile::Output;
    if (!RangeOf(output).Holds(number)) {
        return nullptr;
    }
    switch (output) {
        case U8:
        case U16:
        case U32:
        case U64:
            return RoundTo<std::uint64_t>(number, 0x1p64);
        case S16:
        case S32:
        case S64:
            return RoundTo<std::int64_t>(number, 0x1p63);
        case FLOAT:
        case S64_AS_FLOAT:
            return number;
        case NONE:
            break;
    }
    return nullptr;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
