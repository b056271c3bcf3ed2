#include "DataModel/ElementData.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
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

template <typename Number>
Number GatherBigEndian(const unsigned char* buffer, unsigned int length) {
    Number number = 0;
    for (unsigned int i = 0; i < length; ++i) {
        number = static_cast<Number>(number << 8 | buffer[i]);
    }
    return number;
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
    if (!HasMaskFor(length)) {
        return false;
    }
    if (mValidityCheckEnabled && MatchesPattern(buffer, length)) {
        value = nullptr;
        return true;
    }
    MaskBytes(buffer, length);
    invalid = false;
    myData data;
    Gather(buffer, length, data);
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
        // Two characters fit into the string object itself: no allocation.
        if (std::stoi(mValidityStatus->substr(2 + 2 * i, 2), nullptr, 16) != buffer[i]) {
            return false;
        }
    }
    return true;
}

bool ElementData::HasMaskFor(unsigned int length) const {
    if (mBitmask && mBitmask->size() >= length) {
        return true;
    }
    KZM_LOG(ERROR, "[%s] Bitmask has %zu bytes for %u bytes of data", "Build", mBitmask ? mBitmask->size() : 0, length);
    return false;
}

void ElementData::MaskBytes(unsigned char* buffer, unsigned int length) const {
    std::transform(buffer, buffer + length, mBitmask->begin(), buffer, std::bit_and<unsigned char>());
}

void ElementData::Gather(unsigned char* buffer, unsigned int length, myData& data) const {
    auto& bytes = data.mBytes;
    switch (RowOf(mLogicCode).gathering) {
        case Gathering::BIG_ENDIAN_64:
            data.SetUnsigned(GatherBigEndian<std::uint64_t>(buffer, length));
            break;
        case Gathering::LITTLE_ENDIAN_64:
            // The record stands least significant byte first.
            std::copy_n(buffer, std::min(length, 8U), bytes.begin());
            break;
        case Gathering::SWAPPED_BIG_ENDIAN_32:
            WordSwap(buffer, length < 4 ? 0 : 4);
            [[fallthrough]];
        case Gathering::BIG_ENDIAN_32:
            data.SetUnsigned(GatherBigEndian<std::uint32_t>(buffer, length));
            break;
        case Gathering::MASKED_BYTES:
            std::copy_if(buffer, buffer + length, bytes.begin(),
                         [mask = mBitmask->begin()](unsigned char) mutable { return *mask++ != 0; });
            break;
        case Gathering::SWAPPED_BYTES:
            for (unsigned int i = 0; i + 1 < length; i += 2) {
                bytes[i] = buffer[i + 1];
                bytes[i + 1] = buffer[i];
            }
            break;
        case Gathering::BYTES:
            std::copy_n(buffer, length, bytes.begin());
            break;
    }
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
    if (buffer == nullptr || (length != 4 && length != 6 && length != 8)) {
        return;
    }
    for (unsigned int left = 0, right = length - 2; left < right; left += 2, right -= 2) {
        std::swap_ranges(buffer + left, buffer + left + 2, buffer + right);
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
