#include "DataModel/DecodingSteps.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>
#include <numeric>
#include <utility>

#include "DataModel/ElementData.h"
#include "DataModel/RawRecord.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::Gathering;

namespace {

constexpr const char* LOG_MODULE = "DataModel::ElementData";

// One byte of the raw record is kept free, so that a text in it always ends.
constexpr unsigned int MAX_LENGTH = 255;

// Without a loop, so that compilers make it one instruction.
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

// Reads two characters as std::stoi would; calls it only for input that is not two hexadecimal digits, because it is
// slow.
int HexadecimalAt(const std::string& text, std::size_t position) {
    const char* const digits = text.data() + position;
    int number = 0;
    const auto [end, error] = std::from_chars(digits, digits + 2, number, 16);
    return error == std::errc() && end == digits + 2 ? number : std::stoi(text.substr(position, 2), nullptr, 16);
}

bool RefuseMask(std::size_t size, unsigned int length) {
    KZM_LOG(ERROR, "[%s] Bitmask has %zu bytes for %u bytes of data", "Build", size, length);
    return false;
}

bool HasPatternFor(const std::string* pattern, unsigned int length) {
    return pattern != nullptr && pattern->size() / 2 == std::size_t{length} + 1;
}

bool MatchesPattern(const std::string& pattern, const unsigned char* buffer, unsigned int length) {
    for (std::size_t i = 0; i < length; ++i) {
        if (HexadecimalAt(pattern, 2 + 2 * i) != buffer[i]) {
            return false;
        }
    }
    return true;
}

// Fills the raw record and returns how many of its bytes count: eight of a number. Inlined into the decoding that
// nobody watches, as if that were its only caller.
[[gnu::always_inline]] inline std::size_t Gather(Gathering gathering, const std::uint8_t* mask, unsigned char* buffer,
                                                 unsigned int length, myData& data) {
    auto& bytes = data.mBytes;
    switch (gathering) {
        case Gathering::BIG_ENDIAN_64:
            data.SetUnsigned(GatherBigEndian(buffer, length));
            return sizeof(std::uint64_t);
        case Gathering::LITTLE_ENDIAN_64:
            std::copy_n(buffer, std::min(length, 8U), bytes.begin());
            return sizeof(std::uint64_t);
        case Gathering::SWAPPED_BIG_ENDIAN_32:
            ElementData::WordSwap(buffer, std::min(length, 4U));
            [[fallthrough]];
        case Gathering::BIG_ENDIAN_32:
            data.SetUnsigned(static_cast<std::uint32_t>(GatherBigEndian(buffer, length)));
            return sizeof(std::uint64_t);
        case Gathering::MASKED_BYTES:
            length = static_cast<unsigned int>(std::copy_if(buffer, buffer + length, bytes.begin(),
                                                            [mask](unsigned char) mutable { return *mask++ != 0; }) -
                                               bytes.begin());
            break;
        case Gathering::SWAPPED_BYTES:
            length = length / 2 * 2;
            for (unsigned int i = 0; i < length; i += 2) {
                bytes[i] = buffer[i + 1];
                bytes[i + 1] = buffer[i];
            }
            break;
        case Gathering::BYTES:
            std::copy_n(buffer, length, bytes.begin());
            break;
    }
    data.End(length);
    return length;
}

}  // namespace

bool HasMaskFor(const std::vector<std::uint8_t>* mask, unsigned int length) {
    const std::size_t size = mask ? mask->size() : 0;
    return size >= length || RefuseMask(size, length);
}

void ApplyMask(const std::uint8_t* mask, unsigned char* buffer, unsigned int length) {
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

bool ElementData::MustSwapWords(bool deviceBigEndian) const {
    return mByteOrdering == ByteOrderingEnum::LITTLE_ENDIAN_WORDS ||
           (mByteOrdering == ByteOrderingEnum::DEVICE_ORDER && !deviceBigEndian) || mRow->wordsAlwaysSwapped;
}

// More bytes than are decoded; logged.
bool RefuseLength(unsigned int length) {
    KZM_LOG(ERROR, "[%s] Received data exceed the max buffer size. Received = %d bytes, Max = %d bytes", "Build",
            static_cast<int>(length), static_cast<int>(MAX_LENGTH));
    return false;
}

template <typename Watch>
bool Decoding<Watch>::FindMask(Watch watch, const ElementData& element, unsigned int length) {
    if (HasMaskFor(element.mBitmask.get(), length)) {
        return true;
    }
    watch.Tell({.kind = StepKind::MASKED, .reason = Reason::MISCONFIGURED});
    return false;
}

// Fewer bytes than the element has are no fault of the pattern.
template <typename Watch>
bool Decoding<Watch>::CanCompare(Watch watch, const ElementData& element, unsigned int length) {
    if (!element.mValidityCheckEnabled || HasPatternFor(element.mValidityStatus.get(), length)) {
        return true;
    }
    const bool isShort = length < 2U * element.mNumberOfRegisters;
    const auto reason = isShort ? Reason::NO_DATA : Reason::MISCONFIGURED;
    const std::string* const pattern = element.mValidityStatus.get();
    const std::string_view text = pattern ? *pattern : std::string_view();
    watch.Tell({.kind = StepKind::PATTERN, .reason = reason, .applied = false, .text = text});
    return false;
}

template <typename Watch>
bool Decoding<Watch>::MatchPattern(Watch watch, const ElementData& element, const unsigned char* buffer,
                                   unsigned int length) {
    if (!element.mValidityCheckEnabled) {
        return false;
    }
    const bool matches = MatchesPattern(*element.mValidityStatus, buffer, length);
    watch.Tell({.kind = StepKind::PATTERN,
                .reason = matches ? Reason::NOT_AVAILABLE : Reason::GOOD,
                .applied = matches,
                .bytes = {buffer, length},
                .text = *element.mValidityStatus});
    return matches;
}

template <typename Watch>
bool Decoding<Watch>::Build(Watch watch, ElementData& element, unsigned char* buffer, unsigned int length,
                            bool deviceBigEndian, bool& invalid, nlohmann::json& value) {
    invalid = true;
    if (length > MAX_LENGTH) {
        watch.Tell({.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
        return RefuseLength(length);
    }
    if (element.MustSwapWords(deviceBigEndian)) {
        ElementData::WordSwap(buffer, length);
        watch.Tell({.kind = StepKind::SWAPPED, .bytes = {buffer, length}});
    }
    if (!CanCompare(watch, element, length)) {
        value = nullptr;
        return true;
    }
    if (!FindMask(watch, element, length)) {
        return false;
    }
    invalid = MatchPattern(watch, element, buffer, length);
    ApplyMask(element.mBitmask->data(), buffer, length);
    if (invalid) {
        value = nullptr;
        return true;
    }
    watch.Tell({.kind = StepKind::MASKED, .bytes = {buffer, length}, .mask = {element.mBitmask->data(), length}});
    myData data;
    const std::size_t count = Gather(element.mRow->gathering, element.mBitmask->data(), buffer, length, data);
    watch.Tell({.kind = StepKind::GATHERED, .bytes = {data.mBytes.data(), count}});
    return Convert(watch, element, data, invalid, value);
}

bool ElementData::Build(unsigned char* buffer, unsigned int length, bool deviceBigEndian, int, bool& invalid,
                        nlohmann::json& value, ServiceImpl::IValueProcesser*) {
    if (length == 0 || buffer == nullptr) {
        KZM_LOG(INFORMATION, "[%s] Invalid Input param", __func__);
        KZM_TELL(tObserver, {.kind = StepKind::FAILURE, .reason = Reason::NO_DATA});
        return false;
    }
    if (StepObserver* const observer = tObserver) [[unlikely]] {
        return Decoding<Watched>::Build({*observer}, *this, buffer, length, deviceBigEndian, invalid, value);
    }
    return Decoding<Unwatched>::Build({}, *this, buffer, length, deviceBigEndian, invalid, value);
}

void ElementData::WordSwap(unsigned char* buffer, unsigned int length) {
    if (buffer == nullptr) {
        return;
    }
    // Whole-word stores; two half-word stores would defeat store-to-load forwarding.
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
    if (buffer == nullptr || length > 8 || length % 2 != 0) {
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
