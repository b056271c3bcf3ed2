#include "DeviceProfile/FrameData.h"

#include <algorithm>
#include <utility>

#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     std::uint16_t startAddress)
    : mFunctionCode(functionCode),
      mFlag(flag),
      mSignedParameter(signedParameter),
      mLength(length),
      mAddress(startAddress),
      mKind(FrameKind::CONTIGUOUS) {}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     const std::uint16_t* addresses)
    : mFunctionCode(functionCode),
      mFlag(flag),
      mSignedParameter(signedParameter),
      mLength(length),
      mAddress(addresses),
      mKind(FrameKind::ADDRESS_LIST) {}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     const std::vector<std::uint16_t>& addresses)
    : FrameData(functionCode, flag, signedParameter, length, nullptr) {
    mAddressList = addresses;
    PointIntoOwnList();
}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter)
    : FrameData(functionCode, flag, signedParameter, 0, std::vector<std::uint16_t>{}) {}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     std::uint16_t startAddress, std::uint32_t firstExtraParameter, std::uint32_t secondExtraParameter)
    : FrameData(functionCode, flag, signedParameter, length, startAddress) {
    mKind = FrameKind::CONTIGUOUS_WITH_PARAMETERS;
    mFirstExtraParameter = firstExtraParameter;
    mSecondExtraParameter = secondExtraParameter;
}

FrameData::FrameData(const FrameData& other)
    : mFunctionCode(other.mFunctionCode),
      mFlag(other.mFlag),
      mSignedParameter(other.mSignedParameter),
      mLength(other.mLength),
      mAddress(other.mAddress),
      mKind(other.mKind),
      mFirstExtraParameter(other.mFirstExtraParameter),
      mSecondExtraParameter(other.mSecondExtraParameter),
      mAddressList(other.mAddressList) {
    if (other.PointsIntoOwnList()) {
        PointIntoOwnList();
    }
}

FrameData::FrameData(FrameData&& other) noexcept
    : mFunctionCode(other.mFunctionCode),
      mFlag(other.mFlag),
      mSignedParameter(other.mSignedParameter),
      mLength(other.mLength),
      mAddress(other.mAddress),
      mKind(other.mKind),
      mFirstExtraParameter(other.mFirstExtraParameter),
      mSecondExtraParameter(other.mSecondExtraParameter),
      mAddressList(std::move(other.mAddressList)) {
    other.Clear();
}

FrameData& FrameData::operator=(const FrameData& other) {
    if (this != &other) {
        *this = FrameData(other);
    }
    return *this;
}

FrameData& FrameData::operator=(FrameData&& other) noexcept {
    if (this != &other) {
        mFunctionCode = other.mFunctionCode;
        mFlag = other.mFlag;
        mSignedParameter = other.mSignedParameter;
        mLength = other.mLength;
        mAddress = other.mAddress;
        mKind = other.mKind;
        mFirstExtraParameter = other.mFirstExtraParameter;
        mSecondExtraParameter = other.mSecondExtraParameter;
        mAddressList = std::move(other.mAddressList);
        other.Clear();
    }
    return *this;
}

kz::orba::StatusCode FrameData::AddAddressesToFrame(std::uint16_t first, std::uint16_t count) {
    if (mKind != FrameKind::ADDRESS_LIST) {
        return Status::OUT_OF_RANGE;
    }
    std::sort(mAddressList.begin(), mAddressList.end());
    mAddressList.erase(std::unique(mAddressList.begin(), mAddressList.end()), mAddressList.end());

    const std::uint32_t end = std::uint32_t{first} + count;
    auto status = end >= 0x10000 ? Status::ADDRESS_OVERFLOW : Status::SUCCESS;
    for (std::uint32_t address = first; status == Status::SUCCESS && address < end; ++address) {
        const auto place = std::lower_bound(mAddressList.begin(), mAddressList.end(), address);
        if (place != mAddressList.end() && *place == address) {
            continue;
        }
        if (mAddressList.size() >= MAX_LISTED_ADDRESSES) {
            status = Status::OUT_OF_RANGE;
        } else {
            mAddressList.insert(place, static_cast<std::uint16_t>(address));
        }
    }
    mLength = static_cast<std::uint16_t>(mAddressList.size());
    PointIntoOwnList();
    return status;
}

bool FrameData::PointsIntoOwnList() const {
    return mKind == FrameKind::ADDRESS_LIST && mAddress.mAddresses == mAddressList.data();
}

void FrameData::PointIntoOwnList() {
    mAddress = RegisterAddress(mAddressList.data());
}

void FrameData::Clear() {
    mLength = 0;
    mAddressList.clear();
    if (mKind == FrameKind::ADDRESS_LIST) {
        PointIntoOwnList();
    } else {
        mAddress = RegisterAddress(std::uint16_t{0});
    }
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
