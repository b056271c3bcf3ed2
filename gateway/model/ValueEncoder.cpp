#include "gateway/model/ValueEncoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/json/ProblemText.h"

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

[[noreturn]] void RefuseRange(const std::string& text) {
    throw CannotEncode(text + " is out of range");
}

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
        case RawView::S32:
            return {32, true};
        case RawView::U64:
            return {64, false};
        case RawView::S64:
            return {64, true};
        default:
            return {32, false};
    }
}

bool IsNear(const json& decoded, const json& wanted, double tolerance) {
    return decoded.is_number() && wanted.is_number() && !(decoded.is_number_integer() && wanted.is_number_integer()) &&
           std::fabs(decoded.get<double>() - wanted.get<double>()) <= tolerance;
}

// Turns a text into the bytes of an element, most significant first, and into the value that these must decode to.
class Encoding {
public:
    Encoding(const ElementData& element, const std::string& text)
        : mElement(element), mRow(RowOf(element.GetLogicCode())), mText(text), mBytes(Length()), mMask(Length()) {
        if (element.GetNumberOfRegisters() < mRow.minRegisters || element.GetNumberOfRegisters() > mRow.maxRegisters) {
            throw CannotEncode("the type " + std::string(mRow.name) + " does not stand in " +
                               std::to_string(element.GetNumberOfRegisters()) + " registers");
        }
        if (const auto mask = element.GetBitmaskVector()) {
            std::copy_n(mask->begin(), std::min(mask->size(), mMask.size()), mMask.begin());
        }
        Encode();
        for (std::size_t i = 0; i < mBytes.size(); ++i) {
            if ((mBytes[i] & ~mMask[i]) != 0) {
                throw CannotEncode(mText + " does not fit the mask");
            }
        }
    }

    EncodedValue Result(bool swapped) const {
        return {ToRegisters(mBytes, swapped), ToRegisters(mMask, swapped), mWanted, mTolerance};
    }

private:
    std::size_t Length() const { return std::size_t{2} * mElement.GetNumberOfRegisters(); }

    void Encode() {
        switch (mRow.family) {
            case Family::NUMBER:
            case Family::DOUBLE:
            case Family::DECIMAL_WORDS:
                return EncodeNumber();
            case Family::BOOLEAN:
                return EncodeBoolean();
            case Family::ENUMERATION:
            case Family::SHIFTED_ENUMERATION:
                return EncodeEnumeration();
            case Family::DECIMAL_TEXT:
                SetInteger(Number());
                mWanted = mText;
                return;
            case Family::TEXT_ENUMERATION:
                return SetText(PairOf().mStringValue);
            case Family::TEXT:
                mWanted = mText;
                return SetText(mText);
            default:
                throw CannotEncode("the type " + std::string(mRow.name) + " cannot be written");
        }
    }

    double Number() {
        mWanted = json::parse(mText, nullptr, /*allow_exceptions=*/false);
        if (!mWanted.is_number()) {
            throw CannotEncode(Quoted(mText) + " is no number");
        }
        return mWanted.get<double>();
    }

    void EncodeNumber() {
        const double number = Number();
        const double offset = mElement.GetOffset();
        const double raw = (number - offset) / mElement.GetScaleFactor();
        const double relative = mRow.view == RawView::FLOAT ? 0x1p-23 : 1e-12;
        mTolerance = relative * std::max(std::fabs(number), std::fabs(offset));
        if (std::trunc(number) == number) {
            mTolerance = std::min(mTolerance, 0.5);
        }
        if (mRow.family == Family::DECIMAL_WORDS) {
            SetDecimalWords(raw);
        } else if (mRow.view == RawView::FLOAT) {
            SetFloat(raw);
        } else if (mRow.view == RawView::DOUBLE) {
            SetBits(std::bit_cast<std::uint64_t>(raw));
        } else {
            SetInteger(raw);
        }
    }

    // True is the lowest bit of the mask.
    void EncodeBoolean() {
        if (mText != "true" && mText != "false" && mText != "1" && mText != "0") {
            throw CannotEncode(Quoted(mText) + " is neither true nor false");
        }
        mWanted = mText == "true" || mText == "1";
        SetBits(mWanted.get<bool>() ? std::uint64_t{1} << LowestMaskBit() : 0);
    }

    void EncodeEnumeration() {
        const auto pairs = mElement.GetEnumerationPairs();
        if (!pairs || pairs->empty()) {
            SetEnumerationNumber(Number());
            mWanted = mText;
            return;
        }
        const EnumerationPairData& pair = PairOf();
        SetEnumerationNumber(pair.mType == EnumerationType::FLOAT ? static_cast<double>(pair.mValue.mFloat)
                                                                  : pair.mValue.mUnsigned);
    }

    void SetEnumerationNumber(double number) {
        if (mRow.view == RawView::FLOAT) {
            return SetFloat(number);
        }
        const bool shifted = mRow.family == Family::SHIFTED_ENUMERATION;
        SetInteger(shifted ? std::ldexp(number, LowestMaskBit()) : number);
    }

    // The pair with this label, else the one with this raw value.
    const EnumerationPairData& PairOf() {
        const auto pairs = mElement.GetEnumerationPairs();
        const std::vector<EnumerationPairData> none;
        const auto& known = pairs ? *pairs : none;
        auto found = std::ranges::find(known, mText, &EnumerationPairData::mLabel);
        if (found == known.end()) {
            found = std::ranges::find_if(known, [&](const EnumerationPairData& pair) { return HasRawValue(pair); });
        }
        if (found == known.end()) {
            Names labels;
            std::ranges::transform(known, std::back_inserter(labels), &EnumerationPairData::mLabel);
            throw CannotEncode(Quoted(mText) + " is no label" + Alternatives(mText, labels));
        }
        mWanted = found->mLabel;
        return *found;
    }

    bool HasRawValue(const EnumerationPairData& pair) const {
        const json number = json::parse(mText, nullptr, /*allow_exceptions=*/false);
        switch (pair.mType) {
            case EnumerationType::UNSIGNED_INTEGER:
                return number.is_number() && number == pair.mValue.mUnsigned;
            case EnumerationType::FLOAT:
                return IsNear(number, pair.mValue.mFloat, 0x1p-23 * std::fabs(pair.mValue.mFloat));
            default:
                return pair.mStringValue == mText;
        }
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

    // Least significant byte last.
    void SetBits(std::uint64_t bits) {
        for (std::size_t i = mBytes.size(); i-- > 0; bits >>= 8) {
            mBytes[i] = static_cast<std::uint8_t>(bits);
        }
    }

    void SetFloat(double raw) {
        if (!(std::fabs(raw) <= std::numeric_limits<float>::max())) {
            RefuseRange(mText);
        }
        SetBits(std::bit_cast<std::uint32_t>(static_cast<float>(raw)));
        if (mRow.gathering == Gathering::SWAPPED_BIG_ENDIAN_32) {
            ElementData::WordSwap(mBytes.data(), static_cast<unsigned>(mBytes.size()));
        }
    }

    // A signed number in fewer registers than its type has bits cannot be negative: no sign is read.
    void SetInteger(double raw) {
        const IntegerFormat format = FormatOf(mRow.view);
        const auto bits = std::min(format.bits, static_cast<unsigned>(8 * mBytes.size()));
        const bool isSigned = format.isSigned && bits == format.bits;
        const double rounded = std::round(raw);
        const double end = std::ldexp(1.0, static_cast<int>(isSigned ? bits - 1 : bits));
        if (!(rounded >= (isSigned ? -end : 0.0) && rounded < end)) {
            RefuseRange(mText);
        }
        const std::uint64_t number = rounded < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(rounded))
                                                 : static_cast<std::uint64_t>(rounded);
        SetBits(number & (~std::uint64_t{0} >> (64 - bits)));
    }

    // Each register holds four decimal digits, and the sign where it is signed.
    void SetDecimalWords(double raw) {
        const double rounded = std::round(raw);
        const double end = std::pow(10.0, 2.0 * static_cast<double>(mBytes.size()));
        if (!(rounded > (mRow.view == RawView::S16 ? -end : -1.0) && rounded < end)) {
            RefuseRange(mText);
        }
        auto number = static_cast<std::int64_t>(rounded);
        std::uint64_t bits = 0;
        for (std::size_t word = 0; word < mBytes.size() / 2; ++word, number /= 10000) {
            bits |= static_cast<std::uint64_t>(static_cast<std::uint16_t>(number % 10000)) << (16 * word);
        }
        SetBits(bits);
    }

    // The rest is NUL.
    void SetText(const std::string& text) {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < mBytes.size(); ++i) {
            if (mRow.gathering != Gathering::MASKED_BYTES || mMask[i] != 0) {
                places.push_back(mRow.gathering == Gathering::SWAPPED_BYTES ? i ^ 1U : i);
            }
        }
        if (text.size() > places.size()) {
            throw CannotEncode(Quoted(mText) + " has more than " + std::to_string(places.size()) + " bytes");
        }
        for (std::size_t i = 0; i < text.size(); ++i) {
            mBytes[places[i]] = static_cast<std::uint8_t>(text[i]);
        }
    }

    static EncodedValue::Registers ToRegisters(Bytes bytes, bool swapped) {
        if (swapped) {
            ElementData::WordSwap(bytes.data(), static_cast<unsigned>(bytes.size()));
        }
        EncodedValue::Registers registers;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            registers.push_back(static_cast<std::uint16_t>(bytes[i] << 8 | bytes[i + 1]));
        }
        return registers;
    }

    const ElementData& mElement;
    const LogicCodeRow& mRow;
    const std::string& mText;
    Bytes mBytes;
    Bytes mMask;
    json mWanted;
    double mTolerance = 0;
};

// A number with as many digits as it is sure to have.
std::string TextOf(const json& value) {
    if (value.is_number_float()) {
        char text[32];
        std::snprintf(text, sizeof text, "%.15g", value.get<double>());
        return text;
    }
    return value.is_null() ? "not available" : value.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace

EncodedValue EncodeValue(const ElementData& element, bool deviceBigEndian, const std::string& text) {
    const auto order = element.GetLocalByteOrdering();
    const bool swapped = order == ModbusDeviceModel::ByteOrderingEnum::LITTLE_ENDIAN_WORDS ||
                         (order == ModbusDeviceModel::ByteOrderingEnum::DEVICE_ORDER && !deviceBigEndian) ||
                         element.IsLogicCodeManageInLittleEndian(element.GetLogicCode());
    return Encoding(element, text).Result(swapped);
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
    if (decoded != wanted && !IsNear(decoded, wanted, tolerance)) {
        throw CannotEncode(TextOf(wanted) + " would be read back as " + TextOf(decoded));
    }
}

}  // namespace kzm::ModbusGateway
