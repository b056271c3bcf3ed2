#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>

#include "DataModel/DateTimeText.h"
#include "DataModel/ElementData.h"
#include "DataModel/PowerFactorLabels.h"
#include "DataModel/RawRecord.h"
#include "DataModel/TypedOutput.h"
#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::EnumerationPairData;
using DeviceProfile::EnumerationType;
using DeviceProfile::Family;
using DeviceProfile::Output;
using DeviceProfile::RawView;
using DeviceProfile::RowOf;
using nlohmann::json;

namespace {

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

// Where the decimal digits of a version number go in its text, the least significant first.
std::span<const std::uint8_t> VersionPlaces(Family layout) {
    static constexpr std::uint8_t TWO_THREE[] = {6, 5, 4, 2, 1};
    static constexpr std::uint8_t ONE_ONE_TWO[] = {10, 9, 6, 2};
    static constexpr std::uint8_t ONE_ONE_THREE[] = {10, 9, 8, 6, 2};
    switch (layout) {
        case Family::VERSION_2_3:
            return TWO_THREE;
        case Family::VERSION_1_1_2:
            return ONE_ONE_TWO;
        default:
            return ONE_ONE_THREE;
    }
}

json Version(Family layout, std::uint16_t raw) {
    std::string text = "000.000.000";
    unsigned int rest = raw;
    for (const std::uint8_t place : VersionPlaces(layout)) {
        text[place] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    return text;
}

void SetFrequencyClass(std::uint32_t hertz, json& value) {
    if (hertz == 50 || hertz == 60) {
        value = -2;
    } else if (hertz == 400) {
        value = -1;
    }
}

}  // namespace

bool ElementData::ApplyLogicConversion(int, myData& data, bool& invalid, json& value, ServiceImpl::IValueProcesser*) {
    const auto& row = RowOf(mLogicCode);
    switch (row.family) {
        case Family::NONE:
        case Family::SCALED_POWER:
            return false;
        case Family::NUMBER:
            value = Emit(row.output, Scale(NumberOf(row.view, data)));
            invalid = value.is_null();
            return true;
        case Family::FREQUENCY_CLASS:
            invalid = false;
            SetFrequencyClass(data.Unsigned32(), value);
            return true;
        case Family::TEXT_ENUMERATION:
            invalid = false;
            value = GetEnumValue<unsigned long long>(data, invalid);
            return true;
        default:
            invalid = false;
            value = Convert(data, invalid);
            invalid = invalid || value.is_null();
            return true;
    }
}

json ElementData::Convert(myData& data, bool& invalid) {
    const auto& row = RowOf(mLogicCode);
    switch (row.family) {
        case Family::DOUBLE:
            return EmitFinite(Scale(data.Double()));
        case Family::BOOLEAN:
            return ConvertBoolean(data.Unsigned16());
        case Family::DECIMAL_WORDS:
            return ConvertDecimalWords(data);
        case Family::ENUMERATION:
            return ConvertEnumeration(data, invalid);
        case Family::SHIFTED_ENUMERATION:
            return ConvertShiftedEnumeration(data, invalid);
        case Family::DECIMAL_TEXT:
            return std::to_string(data.Unsigned32());
        case Family::POWER_FACTOR:
            return ConvertPowerFactor(data.Float());
        case Family::QUADRANT:
            return Quadrant(data.Float());
        case Family::LAG_LEAD:
            return LoadNature(data.Float(), LAG, LEAD);
        case Family::INDUCTIVE_CAPACITIVE:
            return LoadNature(data.Float(), INDUCTIVE, CAPACITIVE);
        case Family::TEXT:
            return Text(data);
        case Family::VERSION_2_3:
        case Family::VERSION_1_1_2:
        case Family::VERSION_1_1_3:
            return Version(row.family, data.Unsigned16());
        default:
            return DateTimeText(row.family, data.Text());
    }
}

// The multiplication and the addition are rounded each; they are not contracted into one operation.
double ElementData::Scale(double raw) const {
    return mNeedsScaling ? static_cast<double>(mOffset) + raw * mScaleFactor : raw;
}

json ElementData::ConvertBoolean(std::uint16_t raw) const {
    const double scaled = mNeedsScaling ? std::fma(mScaleFactor, raw, static_cast<double>(mOffset)) : raw;
    if (!std::isfinite(scaled)) {
        return nullptr;
    }
    return scaled != 0.0;
}

json ElementData::ConvertDecimalWords(const myData& data) const {
    const auto& row = RowOf(mLogicCode);
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
        return Emit(row.output, Scale(static_cast<double>(number)));
    }
    if (!mNeedsScaling) {
        return number;
    }
    const bool isWhole = std::trunc(mScaleFactor) == mScaleFactor && std::fabs(mScaleFactor) < 0x1p63;
    return isWhole ? ScaleWhole(number) : Emit(Output::S64, std::trunc(Scale(static_cast<double>(number))));
}

// Scaling by a whole number in 64-bit integers; null for what does not fit.
json ElementData::ScaleWhole(std::int64_t number) const {
    if (!(mOffset >= -0x1p63F && mOffset < 0x1p63F)) {
        return nullptr;
    }
    std::int64_t scaled = 0;
    if (__builtin_mul_overflow(number, static_cast<std::int64_t>(mScaleFactor), &scaled) ||
        __builtin_add_overflow(scaled, static_cast<std::int64_t>(mOffset), &scaled)) {
        return nullptr;
    }
    return scaled;
}

// Folds a power factor in the IEEE convention (-2 to 2, the part past 1 being the leading or lagging half) to -1 ... 1.
json ElementData::ConvertPowerFactor(float raw) const {
    float folded = raw;
    if (raw > 1.0F) {
        folded = 2.0F - raw;
    } else if (raw < -1.0F) {
        folded = -2.0F - raw;
    }
    if (!mNeedsScaling) {
        return EmitFinite(folded);
    }
    constexpr double FLOAT_END = std::numeric_limits<float>::max();
    if (std::fabs(mScaleFactor) <= FLOAT_END && static_cast<double>(static_cast<float>(mScaleFactor)) == mScaleFactor) {
        return EmitFinite(mOffset + static_cast<float>(mScaleFactor) * folded);
    }
    const double scaled = Scale(folded);
    return std::fabs(scaled) <= FLOAT_END ? json(static_cast<float>(scaled)) : json(nullptr);
}

json ElementData::ConvertEnumeration(const myData& data, bool& invalid) {
    switch (RowOf(mLogicCode).view) {
        case RawView::U8:
            return EncodeEnumValue<unsigned char>(data, invalid);
        case RawView::FLOAT:
            return EncodeEnumValue<float>(data, invalid);
        case RawView::U32:
            return EncodeEnumValue<unsigned int>(data, invalid);
        default:
            return EncodeEnumValue<unsigned short>(data, invalid);
    }
}

// The number is shifted right until the lowest bit of the mask is bit 0, so that labels count from 0.
json ElementData::ConvertShiftedEnumeration(myData& data, bool& invalid) {
    const bool is32Bit = RowOf(mLogicCode).view == RawView::U32;
    std::uint64_t number = is32Bit ? data.Unsigned32() : data.Unsigned16();
    std::uint32_t mask = MaskOfBits(is32Bit ? 32 : 16);
    for (int shifts = is32Bit ? 32 : 16; shifts > 0 && (mask & 1) == 0; --shifts) {
        mask >>= 1;
        number >>= 1;
    }
    data.SetUnsigned(number);
    return ConvertEnumeration(data, invalid);
}

// The first bytes of the bitmask as a number; bytes that it does not have count as 0.
std::uint32_t ElementData::MaskOfBits(unsigned int bits) const {
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < bits / 8; ++i) {
        mask = mask << 8 | (i < mBitmask->size() ? (*mBitmask)[i] : 0U);
    }
    return mask;
}

template <typename T>
json ElementData::GetEnumValue(const myData& data, bool& invalid) {
    if (!mEnumerationPairs || mEnumerationPairs->empty()) {
        return nullptr;
    }
    for (const EnumerationPairData& pair : *mEnumerationPairs) {
        if (Matches<T>(pair, data)) {
            invalid = invalid || pair.mLabel.empty();
            return pair.mLabel;
        }
    }
    invalid = true;
    return nullptr;
}

template <typename T>
json ElementData::EncodeEnumValue(const myData& data, bool& invalid) {
    json label = GetEnumValue<T>(data, invalid);
    if (!label.is_null() || invalid) {
        return label;
    }
    if constexpr (std::is_same_v<T, float>) {
        label = FloatAsText(data.Float());
        invalid = label.is_null();
    } else {
        label = std::to_string(ReadAs<T>(data));
    }
    return label;
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
