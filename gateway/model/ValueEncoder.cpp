#include "gateway/model/ValueEncoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"
#include "gateway/model/NumberParsing.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DeviceProfile::EnumerationPairData;
using ModbusDeviceModel::DeviceProfile::EnumerationType;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::Gathering;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::RawView;
using ModbusDeviceModel::DeviceProfile::RowOf;
using nlohmann::json;

namespace {

using Bytes = std::vector<std::uint8_t>;

// The bytes of an element, most significant first; nullopt for a raw value that the type cannot hold.
using Attempt = std::optional<Bytes>;

struct IntegerFormat {
    unsigned bits;
    bool isSigned;
};

IntegerFormat FormatOf(RawView view) {
    switch (view) {
        case RawView::U8:
            return {8, false};
        case RawView::S8:
            return {8, true};
        case RawView::U16:
            return {16, false};
        case RawView::S16:
            return {16, true};
        case RawView::U32:
        case RawView::FLOAT:
            return {32, false};
        case RawView::S32:
            return {32, true};
        case RawView::U64:
        case RawView::DOUBLE:
            return {64, false};
        case RawView::S64:
            return {64, true};
        case RawView::NONE:
        case RawView::BYTES:
            break;
    }
    return {64, false};
}

// The whole numbers that an integer type holds, both ends included.
struct IntegerRange {
    std::int64_t low;
    std::uint64_t high;

    template <typename Integer>
    bool Holds(Integer number) const {
        return std::cmp_greater_equal(number, low) && std::cmp_less_equal(number, high);
    }
};

constexpr std::array<std::uint64_t, 5> DECIMAL_ENDS{0, 9999, 99999999, 999999999999, 9999999999999999};

// Four decimal digits per register, the least significant first, each with the sign of the number.
std::uint64_t DecimalWordsOf(std::int64_t number, std::size_t words) {
    std::uint64_t bits = 0;
    for (std::size_t word = 0; word < words; ++word, number /= 10000) {
        bits |= static_cast<std::uint64_t>(static_cast<std::uint16_t>(number % 10000)) << (16 * word);
    }
    return bits;
}

bool IsSameInteger(const json& one, const json& other) {
    if (one.is_number_unsigned()) {
        const auto number = one.get<std::uint64_t>();
        return other.is_number_unsigned() ? number == other.get<std::uint64_t>()
                                          : std::cmp_equal(number, other.get<std::int64_t>());
    }
    return other.is_number_unsigned() ? IsSameInteger(other, one)
                                      : one.get<std::int64_t>() == other.get<std::int64_t>();
}

// Whether a floating-point number is this integer, but for the tolerance. Compared as integers: as floating point,
// different integers above 2^53 would be equal.
bool IsInteger(double number, const json& integer, double tolerance) {
    const double rounded = std::round(number);
    if (!(std::fabs(number - rounded) <= tolerance && rounded >= -0x1p63 && rounded < 0x1p64)) {
        return false;
    }
    const json whole =
        rounded < 0 ? json(static_cast<std::int64_t>(rounded)) : json(static_cast<std::uint64_t>(rounded));
    return IsSameInteger(whole, integer);
}

bool IsSame(const json& decoded, const json& wanted, double tolerance) {
    if (!decoded.is_number() || !wanted.is_number()) {
        return decoded == wanted;
    }
    if (wanted.is_number_integer()) {
        return decoded.is_number_integer() ? IsSameInteger(decoded, wanted)
                                           : IsInteger(decoded.get<double>(), wanted, tolerance);
    }
    const auto number = wanted.get<double>();
    return decoded.is_number_integer() ? IsInteger(number, decoded, tolerance)
                                       : std::fabs(decoded.get<double>() - number) <= tolerance;
}

bool HasRawValue(const EnumerationPairData& pair, const std::string& text) {
    const json number = ParseDecimal(text).value_or(nullptr);
    switch (pair.mType) {
        case EnumerationType::UNSIGNED_INTEGER:
            return number.is_number() && number == pair.mValue.mUnsigned;
        case EnumerationType::FLOAT:
            return IsSame(pair.mValue.mFloat, number, 0x1p-23 * std::fabs(pair.mValue.mFloat));
        case EnumerationType::STRING:
        case EnumerationType::NONE:
            break;
    }
    return pair.mStringValue == text;
}

// The form in which a whole number is shown as text; any other number as it was given.
std::string CanonicalText(const json& number, const std::string& text) {
    return number.is_number_integer() ? number.dump() : text;
}

EncodedValue::Registers ToRegisters(Bytes bytes, bool swapped) {
    if (swapped) {
        ElementData::WordSwap(bytes.data(), static_cast<unsigned>(bytes.size()));
    }
    EncodedValue::Registers registers;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        registers.push_back(static_cast<std::uint16_t>(bytes[i] << 8 | bytes[i + 1]));
    }
    return registers;
}

// Turns a text into the bytes of an element and into the value that these must decode to. Several raw values may decode
// to one value, and rounding may miss the right one: each plausible raw value is decoded, and the first that gives the
// value is taken.
class Encoding {
public:
    Encoding(ElementData& element, bool deviceBigEndian, const std::string& text)
        : mElement(element), mDeviceBigEndian(deviceBigEndian), mRow(RowOf(element.GetLogicCode())), mText(text) {
        const std::size_t registers = element.GetNumberOfRegisters();
        if (registers < mRow.minRegisters || registers > mRow.maxRegisters) {
            throw CannotEncode("the type " + std::string(mRow.name) + " cannot be held in " +
                               std::to_string(registers) + " registers");
        }
        mMask.resize(2 * registers);
        if (const auto mask = element.GetBitmaskVector()) {
            std::copy_n(mask->begin(), std::min(mask->size(), mMask.size()), mMask.begin());
        }
    }

    EncodedValue Encode() {
        const std::vector<Attempt> attempts = MakeAttempts();
        const auto good = std::ranges::find_if(
            attempts, [this](const Attempt& attempt) { return attempt && FitsMask(*attempt) && ReadsBack(*attempt); });
        const Attempt& best = good != attempts.end() ? *good : attempts.front();
        if (!best) {
            throw CannotEncode(DoesNotFit());
        }
        if (!FitsMask(*best)) {
            throw CannotEncode(mText + " does not fit the mask");
        }
        if (!mElement.GetValidityStatus() && Decoded(*best).is_null()) {
            throw CannotEncode(DoesNotFit());
        }
        return ResultOf(*best);
    }

private:
    // The most obvious raw value first; at least one.
    std::vector<Attempt> MakeAttempts() {
        switch (mRow.family) {
            case Family::NUMBER:
            case Family::DOUBLE:
            case Family::DECIMAL_WORDS:
                return NumberAttempts();
            case Family::BOOLEAN:
                return BooleanAttempts();
            case Family::ENUMERATION:
            case Family::SHIFTED_ENUMERATION:
                return HasLabels() ? LabelAttempts() : UnlabelledAttempts();
            case Family::TEXT_ENUMERATION:
                return LabelAttempts();
            case Family::DECIMAL_TEXT:
                return DecimalTextAttempts();
            case Family::TEXT:
                mWanted = mText;
                return {TextAttempt(mText)};
            case Family::NONE:
            case Family::POWER_FACTOR:
            case Family::QUADRANT:
            case Family::LAG_LEAD:
            case Family::INDUCTIVE_CAPACITIVE:
            case Family::FREQUENCY_CLASS:
            case Family::DATE_IEC870:
            case Family::DATE_3_REGISTERS:
            case Family::DATE_ULP:
            case Family::DATE_CM:
            case Family::DATE_MSP:
            case Family::VERSION_2_3:
            case Family::VERSION_1_1_2:
            case Family::VERSION_1_1_3:
            case Family::SCALED_POWER:
                break;
        }
        throw CannotEncode("the type " + std::string(mRow.name) + " cannot be written");
    }

    json Number() const {
        if (auto number = ParseDecimal(mText)) {
            return *std::move(number);
        }
        throw CannotEncode(Quoted(mText) + " is not a number");
    }

    // Rounding costs a value some bits of its registers; a whole number only those of the scaling.
    double ToleranceOf(const json& number) const {
        const bool isSingle = mRow.view == RawView::FLOAT && !number.is_number_integer();
        const double magnitude = std::max(std::fabs(number.get<double>()), std::fabs(double{mElement.GetOffset()}));
        return (isSingle ? 0x1p-23 : 1e-12) * magnitude;
    }

    std::vector<Attempt> NumberAttempts() {
        mWanted = Number();
        mTolerance = ToleranceOf(mWanted);
        const double offset = mElement.GetOffset();
        const double scale = mElement.GetScaleFactor();
        double raw = (mWanted.get<double>() - offset) / scale;
        raw = std::isnan(raw) ? 0 : raw;  // a scale of 0, and the offset itself
        if (mRow.view == RawView::FLOAT) {
            return FloatAttemptsNear(raw);
        }
        if (mRow.view == RawView::DOUBLE) {
            return {Attempt(BytesOf(std::bit_cast<std::uint64_t>(raw)))};
        }
        const bool isRaw = offset == 0 && scale == 1 && mWanted.is_number_integer();
        if (isRaw && mWanted.is_number_unsigned()) {
            return AttemptsNear(mWanted.get<std::uint64_t>(), 1);
        }
        return isRaw ? AttemptsNear(mWanted.get<std::int64_t>(), 1) : AttemptsNear(raw);
    }

    // The number and its neighbours.
    std::vector<Attempt> FloatAttemptsNear(double raw) const {
        constexpr float FAR = std::numeric_limits<float>::infinity();
        const auto number = static_cast<float>(std::fabs(raw) <= std::numeric_limits<float>::max() ? raw : 0);
        return {FloatAttempt(raw), FloatAttempt(std::nextafter(number, FAR)),
                FloatAttempt(std::nextafter(number, -FAR))};
    }

    // From a number to the next one that is further from zero, without the fraction.
    static std::uint64_t StepAt(double number) {
        const double size = std::fabs(number);
        return static_cast<std::uint64_t>(std::nextafter(size, HUGE_VAL) - size);
    }

    std::vector<Attempt> AttemptsNear(double raw) const {
        const double rounded = std::round(raw);
        if (rounded >= -0x1p63 && rounded < 0x1p62) {
            return AttemptsNear(static_cast<std::int64_t>(rounded), StepAt(rounded));
        }
        if (rounded > 0 && rounded < 0x1p64) {
            return AttemptsNear(static_cast<std::uint64_t>(rounded), StepAt(rounded));
        }
        return {std::nullopt, IntegerAttempt(Range().low), IntegerAttempt(Range().high)};
    }

    // The number, its neighbours, those that the rounding of a large floating-point number skips, and the ends of the
    // range, as an end may be shown rounded to a number that lies beyond it.
    template <typename Integer>
    std::vector<Attempt> AttemptsNear(Integer number, std::uint64_t step) const {
        std::vector<Attempt> attempts{IntegerAttempt(number)};
        for (const std::uint64_t distance : {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{3}, step, 2 * step}) {
            const auto centre = static_cast<std::uint64_t>(number);
            attempts.push_back(IntegerAttempt(static_cast<Integer>(centre + distance)));
            attempts.push_back(IntegerAttempt(static_cast<Integer>(centre - distance)));
        }
        attempts.push_back(IntegerAttempt(Range().low));
        attempts.push_back(IntegerAttempt(Range().high));
        return attempts;
    }

    // True is the lowest bit of the mask and false is 0, unless an offset makes it otherwise.
    std::vector<Attempt> BooleanAttempts() {
        if (mText != "true" && mText != "false" && mText != "1" && mText != "0") {
            throw CannotEncode(Quoted(mText) + " is neither true nor false");
        }
        mWanted = mText == "true" || mText == "1";
        if (mWanted == true) {
            return {BytesOf(std::uint64_t{1} << LowestMaskBit()), BytesOf(0)};
        }
        const double zero = -mElement.GetOffset() / mElement.GetScaleFactor();
        return {BytesOf(0), zero > 0 && zero < 0x1p16 ? IntegerAttempt(std::lround(zero)) : std::nullopt};
    }

    bool HasLabels() const {
        const auto pairs = mElement.GetEnumerationPairs();
        return pairs && !pairs->empty();
    }

    std::vector<Attempt> UnlabelledAttempts() {
        const json number = Number();
        mWanted = CanonicalText(number, mText);
        if (mRow.view == RawView::FLOAT) {
            return {FloatAttempt(number.get<double>())};
        }
        return {number.is_number_unsigned() ? LabelNumberAttempt(number.get<std::uint64_t>()) : std::nullopt};
    }

    std::vector<Attempt> DecimalTextAttempts() {
        const json number = Number();
        mWanted = CanonicalText(number, mText);
        const double rounded = std::round(number.get<double>());
        return {rounded >= 0 && rounded < 0x1p53 ? IntegerAttempt(static_cast<std::uint64_t>(rounded)) : std::nullopt};
    }

    // Of all raw values with the label, else of the first pair with the raw value.
    std::vector<Attempt> LabelAttempts() {
        const auto pairs = mElement.GetEnumerationPairs();
        const std::vector<EnumerationPairData> none;
        const auto& known = pairs ? *pairs : none;
        std::vector<Attempt> attempts;
        for (const EnumerationPairData& pair : known) {
            if (pair.mLabel == mText) {
                attempts.push_back(LabelAttempt(pair));
            }
        }
        mWanted = mText;
        if (!attempts.empty()) {
            return attempts;
        }
        const auto found =
            std::ranges::find_if(known, [this](const EnumerationPairData& pair) { return HasRawValue(pair, mText); });
        if (found == known.end()) {
            Names labels;
            std::ranges::transform(known, std::back_inserter(labels), &EnumerationPairData::mLabel);
            throw CannotEncode(Quoted(mText) + " is not a label" + Alternatives(mText, labels));
        }
        mWanted = found->mLabel;
        return {LabelAttempt(*found)};
    }

    Attempt LabelAttempt(const EnumerationPairData& pair) const {
        switch (pair.mType) {
            case EnumerationType::UNSIGNED_INTEGER:
                return LabelNumberAttempt(pair.mValue.mUnsigned);
            case EnumerationType::FLOAT:
                return FloatAttempt(pair.mValue.mFloat);
            case EnumerationType::STRING:
                return TextAttempt(pair.mStringValue);
            case EnumerationType::NONE:
                break;
        }
        return std::nullopt;
    }

    // Shifted to the lowest bit of the mask where the type is.
    Attempt LabelNumberAttempt(std::uint64_t number) const {
        const int shift = mRow.family == Family::SHIFTED_ENUMERATION ? LowestMaskBit() : 0;
        return number <= (~std::uint64_t{0} >> shift) ? IntegerAttempt(number << shift) : std::nullopt;
    }

    int LowestMaskBit() const {
        int bit = 0;
        for (std::size_t i = mMask.size(); i-- > 0; bit += 8) {
            if (mMask[i] != 0) {
                return bit + std::countr_zero(mMask[i]);
            }
        }
        throw CannotEncode("no bit of the registers belongs to the element");
    }

    // A signed number in fewer registers than its type has bits cannot be negative: no sign is read.
    IntegerRange Range() const {
        if (mRow.family == Family::DECIMAL_WORDS) {
            const std::uint64_t end = DECIMAL_ENDS[mMask.size() / 2];
            return {mRow.view == RawView::S16 ? -static_cast<std::int64_t>(end) : 0, end};
        }
        const IntegerFormat format = FormatOf(mRow.view);
        const auto bits = std::min(format.bits, static_cast<unsigned>(8 * mMask.size()));
        const std::uint64_t all = ~std::uint64_t{0} >> (64 - bits);
        if (format.isSigned && bits == format.bits) {
            return {-static_cast<std::int64_t>(all / 2) - 1, all / 2};
        }
        return {0, all};
    }

    template <typename Integer>
    Attempt IntegerAttempt(Integer number) const {
        if (!Range().Holds(number)) {
            return std::nullopt;
        }
        if (mRow.family == Family::DECIMAL_WORDS) {
            return BytesOf(DecimalWordsOf(static_cast<std::int64_t>(number), mMask.size() / 2));
        }
        return BytesOf(static_cast<std::uint64_t>(number) & (~std::uint64_t{0} >> (64 - FormatOf(mRow.view).bits)));
    }

    Attempt FloatAttempt(double raw) const {
        if (!(std::fabs(raw) <= std::numeric_limits<float>::max())) {
            return std::nullopt;
        }
        Bytes bytes = BytesOf(std::bit_cast<std::uint32_t>(static_cast<float>(raw)));
        if (mRow.gathering == Gathering::SWAPPED_BIG_ENDIAN_32) {
            ElementData::WordSwap(bytes.data(), static_cast<unsigned>(bytes.size()));
        }
        return bytes;
    }

    // Least significant byte last.
    Bytes BytesOf(std::uint64_t bits) const {
        Bytes bytes(mMask.size());
        for (std::size_t i = bytes.size(); i-- > 0; bits >>= 8) {
            bytes[i] = static_cast<std::uint8_t>(bits);
        }
        return bytes;
    }

    // Where the characters of a text go, one after another.
    std::vector<std::size_t> TextPlaces() const {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < mMask.size(); ++i) {
            if (mRow.gathering != Gathering::MASKED_BYTES || mMask[i] != 0) {
                places.push_back(mRow.gathering == Gathering::SWAPPED_BYTES ? i ^ 1U : i);
            }
        }
        return places;
    }

    // The rest is NUL.
    Attempt TextAttempt(const std::string& text) const {
        const std::vector<std::size_t> places = TextPlaces();
        if (text.size() > places.size()) {
            return std::nullopt;
        }
        Bytes bytes(mMask.size());
        for (std::size_t i = 0; i < text.size(); ++i) {
            bytes[places[i]] = static_cast<std::uint8_t>(text[i]);
        }
        return bytes;
    }

    std::string DoesNotFit() const {
        return mRow.view == RawView::BYTES
                   ? Quoted(mText) + " has more than " + std::to_string(TextPlaces().size()) + " bytes"
                   : mText + " is out of range";
    }

    bool FitsMask(const Bytes& bytes) const {
        return std::ranges::equal(bytes, mMask, [](auto byte, auto mask) { return (byte & ~mask) == 0; });
    }

    json Decoded(const Bytes& bytes) { return DecodeValue(mElement, mDeviceBigEndian, ResultOf(bytes).registers); }

    bool ReadsBack(const Bytes& bytes) { return IsSame(Decoded(bytes), mWanted, mTolerance); }

    EncodedValue ResultOf(const Bytes& bytes) const {
        const bool swapped = mElement.MustSwapWords(mDeviceBigEndian);
        return {ToRegisters(bytes, swapped), ToRegisters(mMask, swapped), mWanted, mTolerance};
    }

    ElementData& mElement;
    const bool mDeviceBigEndian;
    const LogicCodeRow& mRow;
    const std::string& mText;
    Bytes mMask;
    json mWanted;
    double mTolerance = 0;
};

// A number with as many digits as it is sure to have; a whole number with all of them.
std::string TextOf(const json& value) {
    if (value.is_number_float()) {
        const double number = value.get<double>();
        const bool isWhole = std::trunc(number) == number && std::fabs(number) < 0x1p63;
        return isWhole ? std::to_string(static_cast<std::int64_t>(number))
                       : NumberText(number, NumberPrecision::DIGITS_15);
    }
    return value.is_null() ? "not available" : value.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace

EncodedValue EncodeValue(ElementData& element, bool deviceBigEndian, const std::string& text) {
    return Encoding(element, deviceBigEndian, text).Encode();
}

json DecodeValue(ElementData& element, bool deviceBigEndian, const EncodedValue::Registers& registers) {
    Bytes bytes;
    for (const std::uint16_t word : registers) {
        bytes.push_back(static_cast<std::uint8_t>(word >> 8));
        bytes.push_back(static_cast<std::uint8_t>(word));
    }
    bool invalid = false;
    json value;
    const bool built =
        element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), deviceBigEndian, 0, invalid, value, nullptr);
    return built && !invalid ? value : json();
}

void EncodedValue::CheckReadBack(const json& decoded) const {
    if (!IsSame(decoded, wanted, tolerance)) {
        throw CannotEncode(TextOf(wanted) + " would be read back as " + TextOf(decoded));
    }
}

}  // namespace kzm::ModbusGateway
