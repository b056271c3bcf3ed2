#include <algorithm>
#include <array>
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

// An element's scale factor and offset.
struct LinearScale {
    bool needed;
    double factor;
    float offset;

    // The multiplication and the addition are rounded separately, never contracted into one operation.
    double operator()(double raw) const { return needed ? static_cast<double>(offset) + raw * factor : raw; }
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

// Compared in double: the limits are no floats.
json Quadrant(double powerFactor) {
    if (powerFactor >= -2.0001 && powerFactor <= -0.9999) {
        return QUAD_II;
    }
    if (powerFactor > -0.9999 && powerFactor < -0.0001) {
        return QUAD_III;
    }
    if (powerFactor >= -0.0001 && powerFactor <= 1.0001) {
        return QUAD_I;
    }
    if (powerFactor > 1.0001 && powerFactor <= 2.0001) {
        return QUAD_IV;
    }
    return nullptr;
}

json LoadNature(double powerFactor, const char* upToOne, const char* aboveOne) {
    const double magnitude = std::fabs(powerFactor);
    if (!std::isfinite(magnitude)) {
        return nullptr;
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

json Boolean(std::uint16_t raw, const LinearScale& scale) {
    const double scaled = scale.needed ? std::fma(scale.factor, raw, static_cast<double>(scale.offset)) : raw;
    if (!std::isfinite(scaled)) {
        return nullptr;
    }
    return scaled != 0.0;
}

// Scales by a whole number in 64-bit integers; null for what does not fit.
json ScaleWhole(std::int64_t number, const LinearScale& scale) {
    std::int64_t scaled = 0;
    if (!(scale.offset >= -0x1p63F && scale.offset < 0x1p63F) ||
        __builtin_mul_overflow(number, static_cast<std::int64_t>(scale.factor), &scaled) ||
        __builtin_add_overflow(scaled, static_cast<std::int64_t>(scale.offset), &scaled)) {
        return nullptr;
    }
    return scaled;
}

json DecimalWords(const LogicCodeRow& row, const myData& data, const LinearScale& scale) {
    std::int64_t number = 0;
    for (std::size_t i = row.maxRegisters; i-- > 0;) {
        const std::uint16_t word = data.Word(i);
        const int digits = row.view == RawView::S16 ? static_cast<std::int16_t>(word) : word;
        if (digits < -9999 || digits > 9999) {
            return nullptr;
        }
        number = number * 10000 + digits;
    }
    if (row.output != Output::S64) {
        return Emit(row.output, scale(static_cast<double>(number)));
    }
    if (!scale.needed) {
        return number;
    }
    const bool isWhole = std::trunc(scale.factor) == scale.factor && std::fabs(scale.factor) < 0x1p63;
    return isWhole ? ScaleWhole(number, scale) : Emit(Output::S64, std::trunc(scale(static_cast<double>(number))));
}

// Folds a power factor in the IEEE convention (-2 to 2, the part past 1 being the leading or lagging half) to -1 to 1.
json PowerFactor(float raw, const LinearScale& scale) {
    float folded = raw;
    if (raw > 1.0F) {
        folded = 2.0F - raw;
    } else if (raw < -1.0F) {
        folded = -2.0F - raw;
    }
    if (!scale.needed) {
        return EmitFinite(folded);
    }
    constexpr double FLOAT_END = std::numeric_limits<float>::max();
    const double factor = scale.factor;
    if (std::fabs(factor) <= FLOAT_END && static_cast<double>(static_cast<float>(factor)) == factor) {
        return EmitFinite(scale.offset + static_cast<float>(factor) * folded);
    }
    const double scaled = scale(folded);
    return std::fabs(scaled) <= FLOAT_END ? json(static_cast<float>(scaled)) : json(nullptr);
}

// Null without pairs. Null and refused where no pair matches; an empty label is refused, too.
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

json Enumeration(const LogicCodeRow& row, const Pairs* pairs, const myData& data, bool& refused) {
    switch (row.view) {
        case RawView::U8:
            return LabelOrNumber<unsigned char>(row.labelType, pairs, data, refused);
        case RawView::FLOAT:
            return LabelOrNumber<float>(row.labelType, pairs, data, refused);
        case RawView::U32:
            return LabelOrNumber<unsigned int>(row.labelType, pairs, data, refused);
        default:
            return LabelOrNumber<unsigned short>(row.labelType, pairs, data, refused);
    }
}

// Shifts a number right until the lowest bit of its mask is bit 0, so that labels count from 0. Its mask is the first
// bytes of the bitmask; where these are fewer than the number has, it is as wide as the element's registers.
myData Shifted(const myData& data, RawView view, const std::vector<std::uint8_t>& bitmask, std::uint8_t registers) {
    std::uint64_t number = view == RawView::U32 ? data.Unsigned32() : data.Unsigned16();
    std::size_t width = view == RawView::U32 ? 4 : 2;
    if (bitmask.size() < width) {
        width = std::min(bitmask.size(), std::size_t{2} * registers);
    }
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < width; ++i) {
        mask = mask << 8 | bitmask[i];
    }
    for (std::size_t shifts = 8 * width; shifts > 0 && (mask & 1) == 0; --shifts) {
        mask >>= 1;
        number >>= 1;
    }
    myData shifted;
    shifted.SetUnsigned(number);
    return shifted;
}

// Any other frequency leaves the value as it was.
void SetFrequencyClass(std::uint32_t hertz, json& value) {
    if (hertz == 50 || hertz == 60) {
        value = -2;
    } else if (hertz == 400) {
        value = -1;
    }
}

// What conversions need of an element.
struct Parts {
    const LogicCodeRow& row;
    LinearScale scale;
    const Pairs* pairs;
    const std::vector<std::uint8_t>& bitmask;
    std::uint8_t registers;
};

// The value of most families, null where there is none. Plain numbers would pay for its stack frame if it were inlined.
// clang-format off
[[gnu::noinline]] json Convert(const Parts& element, const myData& data, bool& refused) {
    const auto& [row, scale, pairs, bitmask, registers] = element;
    switch (row.family) {
        case Family::DOUBLE:               return EmitFinite(scale(data.Double()));
        case Family::BOOLEAN:              return Boolean(data.Unsigned16(), scale);
        case Family::DECIMAL_WORDS:        return DecimalWords(row, data, scale);
        case Family::ENUMERATION:          return Enumeration(row, pairs, data, refused);
        case Family::SHIFTED_ENUMERATION:
            return Enumeration(row, pairs, Shifted(data, row.view, bitmask, registers), refused);
        case Family::DECIMAL_TEXT:         return std::to_string(data.Unsigned32());
        case Family::POWER_FACTOR:         return PowerFactor(data.Float(), scale);
        case Family::QUADRANT:             return Quadrant(data.Float());
        case Family::LAG_LEAD:             return LoadNature(data.Float(), LAG, LEAD);
        case Family::INDUCTIVE_CAPACITIVE: return LoadNature(data.Float(), INDUCTIVE, CAPACITIVE);
        case Family::TEXT:                 return Text(data);
        case Family::DATE_IEC870:          return TextOfIec870(data.Text());
        case Family::DATE_3_REGISTERS:     return TextOf3Registers(data.Text());
        case Family::DATE_ULP:             return TextOfUlp(data.Text());
        case Family::DATE_CM:              return TextOfCm(data.Text());
        case Family::DATE_MSP:             return TextOfMsp(data.Text());
        case Family::VERSION_2_3:          return Version(data.Unsigned16(), {6, 5, 4, 2, 1});
        case Family::VERSION_1_1_2:        return Version(data.Unsigned16(), {10, 9, 6, 2});
        case Family::VERSION_1_1_3:        return Version(data.Unsigned16(), {10, 9, 8, 6, 2});
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

bool ElementData::ApplyLogicConversion(int, myData& data, bool& invalid, json& value, ServiceImpl::IValueProcesser*) {
    const LinearScale scale{mNeedsScaling, mScaleFactor, mOffset};
    const Pairs* const pairs = mEnumerationPairs.get();
    switch (mRow->family) {
        case Family::NONE:
        case Family::SCALED_POWER:
            return false;
        case Family::NUMBER:
            value = Emit(mRow->output, scale(NumberOf(mRow->view, data)));
            invalid = value.is_null();
            return true;
        case Family::FREQUENCY_CLASS:
            invalid = false;
            SetFrequencyClass(data.Unsigned32(), value);
            return true;
        case Family::TEXT_ENUMERATION:  // null is valid where there are no labels
            invalid = false;
            value = LabelOf<std::uint64_t>(pairs, data, invalid);
            return true;
        default:  // Convert lists the others
            invalid = false;
            value = Convert({*mRow, scale, pairs, *mBitmask, mNumberOfRegisters}, data, invalid);
            invalid = invalid || value.is_null();
            return true;
    }
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
