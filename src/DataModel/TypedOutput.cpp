#include "DataModel/TypedOutput.h"

#include <cmath>
#include <limits>

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::Output;

namespace {

constexpr double TWO_TO_63 = 9223372036854775808.0;
constexpr double TWO_TO_64 = 2 * TWO_TO_63;
constexpr double FLOAT_END = std::numeric_limits<float>::max();

struct Range {
    double low;
    double high;

    bool Holds(double number) const { return number >= low && number <= high; }
};

constexpr Range RangeOf(Output output) {
    switch (output) {
        case Output::U8:
            return {0, 255};
        case Output::U16:
            return {0, 65535};
        case Output::U32:
            return {0, 4294967295};
        case Output::U64:
            return {0, TWO_TO_64};
        case Output::S16:
            return {-32768, 32767};
        case Output::S32:
            return {-2147483648.0, 2147483647};
        case Output::S64:
        case Output::S64_AS_FLOAT:
            return {-TWO_TO_63, TWO_TO_63};
        case Output::FLOAT:
            return {-FLOAT_END, FLOAT_END};
        case Output::NONE:
            break;
    }
    return {1, 0};
}

// The upper end of the range does not fit the integer type and becomes the largest number that does.
template <typename Integer>
Integer RoundTo(double number, double end) {
    return number >= end ? std::numeric_limits<Integer>::max() : static_cast<Integer>(std::round(number));
}

}  // namespace

nlohmann::json Emit(Output output, double number) {
    if (!RangeOf(output).Holds(number)) {
        return nullptr;
    }
    switch (output) {
        case Output::U8:
        case Output::U16:
        case Output::U32:
        case Output::U64:
            return RoundTo<std::uint64_t>(number, TWO_TO_64);
        case Output::S16:
        case Output::S32:
        case Output::S64:
            return RoundTo<std::int64_t>(number, TWO_TO_63);
        case Output::FLOAT:
        case Output::S64_AS_FLOAT:
            return number;
        case Output::NONE:
            break;
    }
    return nullptr;
}

nlohmann::json EmitFinite(double number) {
    if (!std::isfinite(number)) {
        return nullptr;
    }
    return number;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
