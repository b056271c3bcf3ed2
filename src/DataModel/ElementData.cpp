#include "DataModel/ElementData.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>
#include <numeric>
#include <utility>

#include "DataModel/LogicCodeDependency.h"
#include "DataModel/RawRecord.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::Gathering;
using DeviceProfile::RowOf;

namespace {

constexpr const char* LOG_MODULE = "DataModel::ElementData";

// One byte is kept free in the raw record, so that a text in it always ends.
constexpr unsigned int MAX_LENGTH = 255;

// Without a loop, as that is what compilers make one instruction of.
template <std::size_t... I>
std::uint64_t BigEndianOf(const unsigned char* bytes, std::index_sequence<I...>) {
    return ((std::uint64_t{bytes[I]} << (8 * (sizeof...(I) - 1 - I))) | ...);
}

std::uint64_t GatherBigEndian(const unsigned char* bytes, unsigned int length) {
    switch (length) {
        case 2:
            return BigEndianOf(bytes, std::make_index_sequence<2>());
        case 4:
            return BigEndianOf(bytes, std::make_index_sequence<4>());
        case 8:
            return BigEndianOf(bytes, std::make_index_sequence<8>());
        default:
            return std::accumulate(bytes, bytes + length, std::uint64_t{0},
                                   [](std::uint64_t number, unsigned char byte) { return number << 8 | byte; });
    }
}

template <typename Word>
Word LoadAt(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

template <typename Word>
void StoreAt(unsigned char* bytes, Word word) {
    std::memcpy(bytes, &word, sizeof word);
}

template <typename Word>
void MaskWord(unsigned char* bytes, const std::uint8_t* mask) {
    StoreAt(bytes, static_cast<Word>(LoadAt<Word>(bytes) & LoadAt<Word>(mask)));
}

// Two characters as std::stoi reads them, which costs more than all other steps of an element: only what is no plain
// number is left to it, to read or to refuse.
int HexadecimalAt(const std::string& text, std::size_t position) {
    const char* const digits = text.data() + position;
    int number = 0;
    const auto [end, error] = std::from_chars(digits, digits + 2, number, 16);
    return error == std::errc() && end == digits + 2 ? number : std::stoi(text.substr(position, 2), nullptr, 16);
}

void Mask(const std::uint8_t* mask, unsigned char* buffer, unsigned int length) {
    switch (length) {
        case 2:
            return MaskWord<std::uint16_t>(buffer, mask);
        case 4:
            return MaskWord<std::uint32_t>(buffer, mask);
        case 8:
            return MaskWord<std::uint64_t>(buffer, mask);
        default:
            std::transform(buffer, buffer + length, mask, buffer, std::bit_and<unsigned char>());
    }
}

bool TellOfMask(std::size_t size, unsigned int length) {
    KZM_LOG(ERROR, "[%s] Bitmask has %zu bytes for %u bytes of data", "Build", size, length);
    return false;
}

bool IsMaskFor(const std::vector<std::uint8_t>* mask, unsigned int length) {
    const std::size_t size = mask ? mask->size() : 0;
    return size >= length || TellOfMask(size, length);
}

void Gather(Gathering gathering, const std::uint8_t* mask, unsigned char* buffer, unsigned int length, myData& data) {
    auto& bytes = data.mBytes;
    switch (gathering) {
        case Gathering::BIG_ENDIAN_64:
            data.SetUnsigned(GatherBigEndian(buffer, length));
            break;
        case Gathering::LITTLE_ENDIAN_64:
            // The record stands least significant byte first.
            std::copy_n(buffer, std::min(length, 8U), bytes.begin());
            break;
        case Gathering::SWAPPED_BIG_ENDIAN_32:
            ElementData::WordSwap(buffer, length < 4 ? 0 : 4);
            [[fallthrough]];
        case Gathering::BIG_ENDIAN_32:
            data.SetUnsigned(static_cast<std::uint32_t>(GatherBigEndian(buffer, length)));
            break;
        case Gathering::MASKED_BYTES:
            data.End(static_cast<std::size_t>(std::copy_if(buffer, buffer + length, bytes.begin(),
                                                           [mask](unsigned char) mutable { return *mask++ != 0; }) -
                                              bytes.begin()));
            break;
        case Gathering::SWAPPED_BYTES:
            for (unsigned int i = 0; i + 1 < length; i += 2) {
                bytes[i] = buffer[i + 1];
                bytes[i + 1] = buffer[i];
            }
            data.End(length / 2 * 2);
            break;
        case Gathering::BYTES:
            std::copy_n(buffer, length, bytes.begin());
            data.End(length);
            break;
    }
}

}  // namespace

ElementData::ElementData(std::uint16_t registerAddress, std::uint8_t numberOfRegisters,
                         std::shared_ptr<std::vector<std::uint8_t>> bitmask, double scaleFactor,
                         std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
                         std::uint8_t frameIndex, std::string attributePath, float offset,
                         std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs,
                         ByteOrderingEnum byteOrdering, bool validityCheckEnabled)
    : mRegisterAddress(registerAddress),
      mNumberOfRegisters(numberOfRegisters),
      mByteOrdering(byteOrdering),
      mValidityCheckEnabled(validityCheckEnabled),
      mAttributePath(std::move(attributePath)),
      mScaleFactor(scaleFactor),
      mOffset(offset),
      mBitmask(std::move(bitmask)),
      mValidityStatus(std::move(validityStatus)),
      mEnumerationPairs(std::move(enumerationPairs)),
      mLogicCode(logicCode),
      mFrameIndex(frameIndex),
      mNeedsScaling(offset != 0.0F || scaleFactor != 1.0) {}

ElementData::~ElementData() = default;

bool ElementData::Build(unsigned char* buffer, unsigned int length, bool deviceBigEndian, int request, bool& invalid,
                        nlohmann::json& value, ServiceImpl::IValueProcesser* valueProcesser) {
    if (length == 0 || buffer == nullptr) {
        KZM_LOG(INFORMATION, "[%s] Invalid Input param", __func__);
        return false;
    }
    invalid = true;
    if (length > MAX_LENGTH) {
        KZM_LOG(ERROR, "[%s] Received data exceed the max buffer size. Received = %d bytes, Max = %d bytes", __func__,
                static_cast<int>(length), static_cast<int>(MAX_LENGTH));
        return false;
    }
    if (MustSwapWords(deviceBigEndian)) {
        WordSwap(buffer, length);
    }
    if (mValidityCheckEnabled && !HasPatternFor(length)) {
        value = nullptr;
        return true;
    }
    if (!IsMaskFor(mBitmask.get(), length)) {
        return false;
    }
    if (mValidityCheckEnabled && MatchesPattern(buffer, length)) {
        value = nullptr;
        return true;
    }
    Mask(mBitmask->data(), buffer, length);
    invalid = false;
    myData data;
    Gather(RowOf(mLogicCode).gathering, mBitmask->data(), buffer, length, data);
    return ApplyLogicConversion(request, data, invalid, value, valueProcesser);
}

bool ElementData::MustSwapWords(bool deviceBigEndian) const {
    return mByteOrdering == ByteOrderingEnum::LITTLE_ENDIAN_WORDS ||
           (mByteOrdering == ByteOrderingEnum::DEVICE_ORDER && !deviceBigEndian) ||
           IsLogicCodeManageInLittleEndian(mLogicCode);
}

bool ElementData::HasPatternFor(unsigned int length) const {
    return mValidityStatus && mValidityStatus->size() / 2 == std::size_t{length} + 1;
}

bool ElementData::MatchesPattern(const unsigned char* buffer, unsigned int length) const {
    for (std::size_t i = 0; i < length; ++i) {
        if (HexadecimalAt(*mValidityStatus, 2 + 2 * i) != buffer[i]) {
            return false;
        }
    }
    return true;
}

bool ElementData::HasMaskFor(unsigned int length) const {
    return IsMaskFor(mBitmask.get(), length);
}

void ElementData::MaskBytes(unsigned char* buffer, unsigned int length) const {
    Mask(mBitmask->data(), buffer, length);
}

std::uint16_t ElementData::GetDeviceRegister() const {
    return mRegisterAddress;
}

std::uint8_t ElementData::GetNumberOfRegisters() const {
    return mNumberOfRegisters;
}

std::int16_t ElementData::GetSlaveOffset() const {
    return 0;
}

std::shared_ptr<std::vector<LogicCodeDependency>> ElementData::GetLogicCodeDependency() const {
    return nullptr;
}

bool ElementData::IsLogicCodeManageInLittleEndian(LogicCodeIdentifier) const {
    return RowOf(mLogicCode).wordsAlwaysSwapped;
}

nlohmann::json ElementData::ToJson() const {
    return {{"registerAddress", mRegisterAddress},
            {"nbRegisters", mNumberOfRegisters},
            {"scaleFactor", mScaleFactor},
            {"frameIndex", mFrameIndex},
            {"offset", mOffset},
            {"byteOrdering", static_cast<std::int16_t>(mByteOrdering)},
            {"attributePath", mAttributePath},
            {"logicCode", static_cast<std::uint8_t>(mLogicCode)}};
}

void ElementData::WordSwap(unsigned char* buffer, unsigned int length) {
    if (buffer == nullptr) {
        return;
    }
    // Whole loads and stores: what is written by halves cannot be read at once before it has left the processor's
    // queue.
    if (length == 4) {
        StoreAt(buffer, std::rotl(LoadAt<std::uint32_t>(buffer), 16));
    } else if (length == 6) {
        std::swap_ranges(buffer, buffer + 2, buffer + 4);
    } else if (length == 8) {
        const auto first = LoadAt<std::uint32_t>(buffer);
        StoreAt(buffer, std::rotl(LoadAt<std::uint32_t>(buffer + 4), 16));
        StoreAt(buffer + 4, std::rotl(first, 16));
    }
}

void ElementData::ByteSwap(unsigned char* buffer, unsigned int length) {
    if (buffer == nullptr || length < 2 || length > 8 || length % 2 != 0) {
        return;
    }
    for (unsigned int i = 0; i < length; i += 2) {
        std::swap(buffer[i], buffer[i + 1]);
    }
}

void ElementData::ByteAndWordSwap(unsigned char* buffer, unsigned int length) {
    ByteSwap(buffer, length);
    WordSwap(buffer, length);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
