#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataModel/DateTimeText.h"
#include "DataModel/DecodingSteps.h"
#include "DataModel/ElementData.h"
#include "DataModel/NumberToJson.h"
#include "DataModel/PowerFactorLabels.h"
#include "DataModel/RawRecord.h"
#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::EnumerationPairData;
using DeviceProfile::EnumerationType;
using DeviceProfile::Family;
using DeviceProfile::LogicCodeRow;
using DeviceProfile::Output;
using DeviceProfile::RawView;
using nlohmann::json;

namespace {

using Pairs = std::vector<EnumerationPairData>;

constexpr OutputRange DOUBLE_RANGE{std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max()};

// What conversions need of an element.
template <typename Watch>
struct Parts {
    Watch watch;
    const LogicCodeRow& row;
    bool scaled;
    double factor;
    float offset;
    const Pairs* pairs;
    const std::vector<std::uint8_t>& bitmask;
    std::uint8_t registers;

    // The multiplication and the addition are rounded separately, never contracted into one operation.
    double Scale(double raw) const {
        return TellScaled(raw, scaled ? static_cast<double>(offset) + raw * factor : raw);
    }
    double TellScaled(double raw, double number) const {
        watch.Tell({.kind = StepKind::RAW, .number = raw});
        if (scaled) {
            watch.Tell({.kind = StepKind::SCALED, .number = number, .factor = factor, .offset = offset});
        }
        return number;
    }

    // The ways to no value; each names its reason.
    // A number that `raw` gives and that `range` does not hold.
    void TellRange(double raw, double number, OutputRange range) const {
        watch.Tell({.kind = StepKind::RANGE,
                    .reason = std::isfinite(raw) ? Reason::OUT_OF_RANGE : Reason::NOT_FINITE,
                    .number = number,
                    .low = range.low,
                    .high = range.high});
    }
    json RefuseNumber(double raw, double number, OutputRange range) const {
        TellRange(raw, number, range);
        return nullptr;
    }
    void TellNoLabel(Reason reason, double number, std::string_view text) const {
        watch.Tell({.kind = StepKind::LABEL, .reason = reason, .applied = false, .text = text, .number = number});
    }

    // A number in an output type.
    json EmitAs(Output output, double raw, double number) const {
        json value = Emit(output, number);
        if (value.is_null()) {
            TellRange(raw, number, RangeOf(output));
        }
        return value;
    }
    // Floating point without a range.
    json EmitFloat(double raw, double number) const {
        if (!std::isfinite(number)) {
            return RefuseNumber(raw, number, DOUBLE_RANGE);
        }
        return number;
    }
};

double NumberOf(RawView view, const myData& data) {
    switch (view) {
        case RawView::U8:
            return data.Unsigned8();
        case RawView::S8:
            return data.Signed8();
        case RawView::U16:
            return data.Unsigned16();
        case RawView::S16:
            return data.Signed16();
        case RawView::U32:
            return data.Unsigned32();
        case RawView::S32:
            return data.Signed32();
        case RawView::U64:
            return static_cast<double>(data.Unsigned64());
        case RawView::S64:
            return static_cast<double>(data.Signed64());
        case RawView::FLOAT:
            return data.Float();
        case RawView::DOUBLE:
            return data.Double();
        case RawView::NONE:
        case RawView::BYTES:
            break;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

template <typename T>
T ReadAs(const myData& data) {
    if constexpr (std::is_same_v<T, float>) {
        return data.Float();
    } else {
        return static_cast<T>(data.Unsigned64());
    }
}

template <typename T>
bool Matches(const EnumerationPairData& pair, const myData& data) {
    switch (pair.mType) {
        case EnumerationType::UNSIGNED_INTEGER:
            if constexpr (std::is_integral_v<T>) {
                return pair.mValue.mUnsigned == ReadAs<T>(data);
            }
            return false;
        case EnumerationType::FLOAT:
            return pair.matches(data.Float());
        case EnumerationType::STRING:
            return pair.matches(data.Text());
        case EnumerationType::NONE:
            break;
    }
    return false;
}

json FloatAsText(float number) {
    if (!std::isfinite(number)) {
        return nullptr;
    }
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return std::string(text.data(), end);
}

json Text(const myData& data) {
    std::string text = data.Text();
    ElementData::SanitiseUTF8Sequence(text);
    return text;
}

// Ranges of power factors.
constexpr OutputRange QUADRANTS{-2.0001, 2.0001};
constexpr OutputRange MAGNITUDES{0, std::numeric_limits<float>::max()};

// Compared in double: the limits are no floats.
template <typename Watch>
json Quadrant(const Parts<Watch>& element, double powerFactor) {
    element.watch.Tell({.kind = StepKind::RAW, .number = powerFactor});
    if (!QUADRANTS.Holds(powerFactor)) {
        return element.RefuseNumber(powerFactor, powerFactor, QUADRANTS);
    }
    if (powerFactor <= -0.9999) {
        return QUAD_II;
    }
    if (powerFactor < -0.0001) {
        return QUAD_III;
    }
    return powerFactor <= 1.0001 ? QUAD_I : QUAD_IV;
}

template <typename Watch>
json LoadNature(const Parts<Watch>& element, double powerFactor, const char* upToOne, const char* aboveOne) {
    element.watch.Tell({.kind = StepKind::RAW, .number = powerFactor});
    const double magnitude = std::fabs(powerFactor);
    if (!std::isfinite(magnitude)) {
        return element.RefuseNumber(powerFactor, magnitude, MAGNITUDES);
    }
    if (std::fabs(magnitude - 1.0) < 0.001) {
        return UNITY;
    }
    return magnitude <= 1.0 ? upToOne : aboveOne;
}

// A decimal number of at most five digits as version text. `places`: where its digits go, the least significant first;
// digits without a place are dropped.
json Version(std::uint16_t raw, std::initializer_list<std::uint8_t> places) {
    std::string text = "000.000.000";
    unsigned int rest = raw;
    for (const std::uint8_t place : places) {
        text[place] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    return text;
}

template <typename Watch>
json Boolean(const Parts<Watch>& element, std::uint16_t raw) {
    const double scaled = element.scaled ? std::fma(element.factor, raw, static_cast<double>(element.offset)) : raw;
    element.TellScaled(raw, scaled);
    if (!std::isfinite(scaled)) {
        return element.RefuseNumber(raw, scaled, DOUBLE_RANGE);
    }
    return scaled != 0.0;
}

// Scales by a whole number in 64-bit integers; null for what does not fit.
template <typename Watch>
json ScaleWhole(const Parts<Watch>& element, std::int64_t number) {
    std::int64_t scaled = 0;
    const auto raw = static_cast<double>(number);
    if (!(element.offset >= -0x1p63F && element.offset < 0x1p63F) ||
        __builtin_mul_overflow(number, static_cast<std::int64_t>(element.factor), &scaled) ||
        __builtin_add_overflow(scaled, static_cast<std::int64_t>(element.offset), &scaled)) {
        return element.RefuseNumber(raw, raw * element.factor + static_cast<double>(element.offset),
                                    RangeOf(Output::S64));
    }
    element.TellScaled(raw, static_cast<double>(scaled));
    return scaled;
}

template <typename Watch>
json DecimalWords(const Parts<Watch>& element, const myData& data) {
    constexpr OutputRange DIGITS{-9999, 9999};
    const LogicCodeRow& row = element.row;
    std::int64_t number = 0;
    for (std::size_t i = row.maxRegisters; i-- > 0;) {
        const std::uint16_t word = data.Word(i);
        const int digits = row.view == RawView::S16 ? static_cast<std::int16_t>(word) : word;
        if (!DIGITS.Holds(digits)) {
            return element.RefuseNumber(digits, digits, DIGITS);
        }
        number = number * 10000 + digits;
    }
    const auto raw = static_cast<double>(number);
    if (row.output != Output::S64) {
        return element.EmitAs(row.output, raw, element.Scale(raw));
    }
    if (!element.scaled) {
        element.TellScaled(raw, raw);
        return number;
    }
    const bool isWhole = std::trunc(element.factor) == element.factor && std::fabs(element.factor) < 0x1p63;
    return isWhole ? ScaleWhole(element, number) : element.EmitAs(Output::S64, raw, std::trunc(element.Scale(raw)));
}

// Folds a power factor in the IEEE convention (-2 to 2, the part past 1 being the leading or lagging half) to -1 to 1.
template <typename Watch>
json PowerFactor(const Parts<Watch>& element, float raw) {
    float folded = raw;
    if (raw > 1.0F) {
        folded = 2.0F - raw;
    } else if (raw < -1.0F) {
        folded = -2.0F - raw;
    }
    if (!element.scaled) {
        return element.EmitFloat(raw, element.TellScaled(folded, folded));
    }
    constexpr double FLOAT_END = std::numeric_limits<float>::max();
    const double factor = element.factor;
    if (std::fabs(factor) <= FLOAT_END && static_cast<double>(static_cast<float>(factor)) == factor) {
        const float scaled = element.offset + static_cast<float>(factor) * folded;
        return element.EmitFloat(raw, element.TellScaled(folded, scaled));
    }
    const double scaled = element.Scale(folded);
    if (std::fabs(scaled) <= FLOAT_END) {
        return static_cast<float>(scaled);
    }
    return element.RefuseNumber(raw, scaled, {-FLOAT_END, FLOAT_END});
}

// The label of the first pair that matches; null without pairs. Null and refused where no pair matches; an empty label
// is refused, too.
template <typename T>
json LabelOf(const Pairs* pairs, const myData& data, bool& refused) {
    if (pairs == nullptr || pairs->empty()) {
        return nullptr;
    }
    for (const EnumerationPairData& pair : *pairs) {
        if (Matches<T>(pair, data)) {
            refused = refused || pair.mLabel.empty();
            return pair.mLabel;
        }
    }
    refused = true;
    return nullptr;
}

template <typename T>
json NumberAsText(EnumerationType type, const myData& data) {
    if (type == EnumerationType::FLOAT || std::is_same_v<T, float>) {
        return FloatAsText(data.Float());
    }
    return std::to_string(ReadAs<T>(data));
}

// The label; without pairs, the number itself where labels stand for numbers.
template <typename T>
json LabelOrNumber(EnumerationType type, const Pairs* pairs, const myData& data, bool& refused) {
    bool hasNone = false;
    json label = LabelOf<T>(pairs, data, hasNone);
    if (label.is_null() && !hasNone && (type == EnumerationType::UNSIGNED_INTEGER || type == EnumerationType::FLOAT)) {
        label = NumberAsText<T>(type, data);
        hasNone = label.is_null();
    }
    refused = refused || hasNone;
    return label;
}

// Tells which label was found, or why there is none.
template <typename Watch>
void TellLabel(const Parts<Watch>& element, const json& label, double number, std::string_view text) {
    if (label.is_string() && !label.get_ref<const std::string&>().empty()) {
        element.watch.Tell({.kind = StepKind::LABEL, .text = label.get_ref<const std::string&>(), .number = number});
    } else if (element.pairs != nullptr && !element.pairs->empty()) {
        element.TellNoLabel(Reason::UNKNOWN_LABEL, number, text);
    } else {
        element.TellNoLabel(std::isfinite(number) ? Reason::MISCONFIGURED : Reason::NOT_FINITE, number, text);
    }
}

template <typename T, typename Watch>
json LabelOfNumber(const Parts<Watch>& element, const myData& data, bool& refused) {
    json label = LabelOrNumber<T>(element.row.labelType, element.pairs, data, refused);
    if constexpr (Watch::IS_WATCHED) {
        const auto number = static_cast<double>(ReadAs<T>(data));
        element.watch.Tell({.kind = StepKind::RAW, .number = number});
        TellLabel(element, label, number, {});
    }
    return label;
}

template <typename Watch>
json LabelOfText(const Parts<Watch>& element, const myData& data, bool& refused) {
    json label = LabelOf<std::uint64_t>(element.pairs, data, refused);
    if constexpr (Watch::IS_WATCHED) {
        TellLabel(element, label, 0, data.Text());
    }
    return label;
}

template <typename Watch>
json Enumeration(const Parts<Watch>& element, const myData& data, bool& refused) {
    switch (element.row.view) {
        case RawView::U8:
            return LabelOfNumber<unsigned char>(element, data, refused);
        case RawView::FLOAT:
            return LabelOfNumber<float>(element, data, refused);
        case RawView::U32:
            return LabelOfNumber<unsigned int>(element, data, refused);
        default:
            return LabelOfNumber<unsigned short>(element, data, refused);
    }
}

// Shifts a number right until the lowest bit of its mask is bit 0, so that labels count from 0. Its mask is the first
// bytes of the bitmask; where these are fewer than the number has, it is as wide as the element's registers.
myData Shifted(const myData& data, RawView view, const std::vector<std::uint8_t>& bitmask, std::uint8_t registers) {
    const std::uint64_t number = view == RawView::U32 ? data.Unsigned32() : data.Unsigned16();
    std::size_t width = view == RawView::U32 ? 4 : 2;
    if (bitmask.size() < width) {
        width = std::min(bitmask.size(), std::size_t{2} * registers);
    }
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < width; ++i) {
        mask = mask << 8 | bitmask[i];
    }
    myData shifted;
    shifted.SetUnsigned(number >> std::countr_zero(mask));
    return shifted;
}

template <typename Watch>
json Number(const Parts<Watch>& element, const myData& data) {
    const double raw = NumberOf(element.row.view, data);
    return element.EmitAs(element.row.output, raw, element.Scale(raw));
}

// Any other frequency leaves the value as it was.
template <typename Watch>
void SetFrequencyClass(const Parts<Watch>& element, std::uint32_t hertz, json& value) {
    constexpr OutputRange CLASSES{50, 400};
    element.watch.Tell({.kind = StepKind::RAW, .number = static_cast<double>(hertz)});
    if (hertz == 50 || hertz == 60) {
        value = -2;
    } else if (hertz == 400) {
        value = -1;
    } else {
        element.TellRange(hertz, hertz, CLASSES);
    }
}

// A text that is made of the number in the registers.
template <typename Watch, typename Number>
Number TellRaw(const Parts<Watch>& element, Number raw) {
    element.watch.Tell({.kind = StepKind::RAW, .number = static_cast<double>(raw)});
    return raw;
}

// The value of most families, null where there is none. Plain numbers would pay for its stack frame if it were inlined.
// clang-format off
template <typename Watch>
[[gnu::noinline]] json ConvertOther(const Parts<Watch>& element, const myData& data, bool& refused) {
    switch (element.row.family) {
        case Family::DOUBLE:               return element.EmitFloat(data.Double(), element.Scale(data.Double()));
        case Family::BOOLEAN:              return Boolean(element, data.Unsigned16());
        case Family::DECIMAL_WORDS:        return DecimalWords(element, data);
        case Family::ENUMERATION:          return Enumeration(element, data, refused);
        case Family::SHIFTED_ENUMERATION:
            return Enumeration(element, Shifted(data, element.row.view, element.bitmask, element.registers), refused);
        case Family::DECIMAL_TEXT:         return std::to_string(TellRaw(element, data.Unsigned32()));
        case Family::POWER_FACTOR:         return PowerFactor(element, data.Float());
        case Family::QUADRANT:             return Quadrant(element, data.Float());
        case Family::LAG_LEAD:             return LoadNature(element, data.Float(), LAG, LEAD);
        case Family::INDUCTIVE_CAPACITIVE: return LoadNature(element, data.Float(), INDUCTIVE, CAPACITIVE);
        case Family::TEXT:                 return Text(data);
        case Family::DATE_IEC870:          return TextOfIec870(data.Text());
        case Family::DATE_3_REGISTERS:     return TextOf3Registers(data.Text());
        case Family::DATE_ULP:             return TextOfUlp(data.Text());
        case Family::DATE_CM:              return TextOfCm(data.Text());
        case Family::DATE_MSP:             return TextOfMsp(data.Text());
        case Family::VERSION_2_3:          return Version(TellRaw(element, data.Unsigned16()), {6, 5, 4, 2, 1});
        case Family::VERSION_1_1_2:        return Version(TellRaw(element, data.Unsigned16()), {10, 9, 6, 2});
        case Family::VERSION_1_1_3:        return Version(TellRaw(element, data.Unsigned16()), {10, 9, 8, 6, 2});
        case Family::NONE:  // these and the following have no value of their own or are converted by the callers
        case Family::NUMBER:
        case Family::TEXT_ENUMERATION:
        case Family::FREQUENCY_CLASS:
        case Family::SCALED_POWER:         break;
    }
    return nullptr;
}
// clang-format on

}  // namespace

template <typename Watch>
bool Decoding<Watch>::Convert(Watch watch, const ElementData& element, const myData& data, bool& invalid, json& value) {
    const LogicCodeRow& row = *element.mRow;
    // Made where they are used: plain numbers then need no memory for them.
    const auto parts = [&] {
        return Parts<Watch>{watch,
                            row,
                            element.mNeedsScaling,
                            element.mScaleFactor,
                            element.mOffset,
                            element.mEnumerationPairs.get(),
                            *element.mBitmask,
                            element.mNumberOfRegisters};
    };
    switch (row.family) {
        case Family::NONE:
        case Family::SCALED_POWER:
            watch.Tell({.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
            return false;
        case Family::NUMBER:
            value = Number(parts(), data);
            invalid = value.is_null();
            return true;
        case Family::FREQUENCY_CLASS:
            invalid = false;
            SetFrequencyClass(parts(), data.Unsigned32(), value);
            return true;
        case Family::TEXT_ENUMERATION:  // null is valid where there are no labels
            invalid = false;
            value = LabelOfText(parts(), data, invalid);
            return true;
        default:  // ConvertOther lists the others
            invalid = false;
            value = ConvertOther(parts(), data, invalid);
            invalid = invalid || value.is_null();
            return true;
    }
}

template bool Decoding<Watched>::Convert(Watched, const ElementData&, const myData&, bool&, json&);
template bool Decoding<Unwatched>::Convert(Unwatched, const ElementData&, const myData&, bool&, json&);

bool ElementData::ApplyLogicConversion(int, myData& data, bool& invalid, json& value, ServiceImpl::IValueProcesser*) {
    if (StepObserver* const observer = tObserver) [[unlikely]] {
        return Decoding<Watched>::Convert({*observer}, *this, data, invalid, value);
    }
    return Decoding<Unwatched>::Convert({}, *this, data, invalid, value);
}

template <typename T>
json ElementData::GetEnumValue(const myData& data, bool& invalid) {
    return LabelOf<T>(mEnumerationPairs.get(), data, invalid);
}

template <typename T>
json ElementData::EncodeEnumValue(const myData& data, bool& invalid) {
    return LabelOrNumber<T>(mRow->labelType, mEnumerationPairs.get(), data, invalid);
}

template json ElementData::GetEnumValue<unsigned char>(const myData&, bool&);
template json ElementData::GetEnumValue<unsigned short>(const myData&, bool&);
template json ElementData::GetEnumValue<unsigned int>(const myData&, bool&);
template json ElementData::GetEnumValue<unsigned long long>(const myData&, bool&);
template json ElementData::GetEnumValue<float>(const myData&, bool&);
template json ElementData::EncodeEnumValue<unsigned char>(const myData&, bool&);
template json ElementData::EncodeEnumValue<unsigned short>(const myData&, bool&);
template json ElementData::EncodeEnumValue<unsigned int>(const myData&, bool&);
template json ElementData::EncodeEnumValue<float>(const myData&, bool&);

}  // namespace kzm::ModbusDeviceModel::DataModel
