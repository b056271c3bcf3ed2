#include "DeviceProfile/FrameData.h"

#include <algorithm>
#include <utility>

#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

bool PointsIntoOwnList(const FrameData& frame) {
    return frame.mKind == FrameKind::ADDRESS_LIST && frame.mAddress.mAddresses == frame.mAddressList.data();
}

void PointIntoOwnList(FrameData& frame) {
    frame.mAddress = RegisterAddress(frame.mAddressList.data());
}

void Clear(FrameData& frame) {
    frame.mLength = 0;
    frame.mAddressList.clear();
    if (frame.mKind == FrameKind::ADDRESS_LIST) {
        PointIntoOwnList(frame);
    } else {
        frame.mAddress = RegisterAddress(std::uint16_t{0});
    }
}

}  // namespace

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     std::uint16_t startAddress)
    : FrameDescription{functionCode,         flag, signedParameter, length, RegisterAddress(startAddress),
                       FrameKind::CONTIGUOUS} {}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     const std::uint16_t* addresses)
    : FrameDescription{functionCode,           flag, signedParameter, length, RegisterAddress(addresses),
                       FrameKind::ADDRESS_LIST} {}

FrameData::FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
                     const std::vector<std::uint16_t>& addresses)
    : FrameData(functionCode, flag, signedParameter, length, nullptr) {
    mAddressList = addresses;
    PointIntoOwnList(*this);
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

FrameData::FrameData(const FrameData& other) : FrameDescription(other), mAddressList(other.mAddressList) {
    if (PointsIntoOwnList(other)) {
        PointIntoOwnList(*this);
    }
}

FrameData::FrameData(FrameData&& other) noexcept
    : FrameDescription(other), mAddressList(std::move(other.mAddressList)) {
    Clear(other);
}

FrameData& FrameData::operator=(const FrameData& other) {
    if (this != &other) {
        *this = FrameData(other);
    }
    return *this;
}

FrameData& FrameData::operator=(FrameData&& other) noexcept {
    if (this != &other) {
        FrameDescription::operator=(other);
        mAddressList = std::move(other.mAddressList);
        Clear(other);
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
    PointIntoOwnList(*this);
    return status;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
