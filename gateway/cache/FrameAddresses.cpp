#include "gateway/cache/FrameAddresses.h"

#include <algorithm>

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceProfile::FrameData;
using ModbusDeviceModel::DeviceProfile::FrameKind;

namespace {

std::vector<std::uint16_t> ListedAddresses(const FrameData& frame) {
    const std::uint16_t* first = frame.mAddress.mAddresses;
    std::size_t count = frame.mLength;
    if (first == frame.mAddressList.data()) {
        count = std::min(count, frame.mAddressList.size());
    }
    return first == nullptr ? std::vector<std::uint16_t>{} : std::vector<std::uint16_t>(first, first + count);
}

}  // namespace

std::vector<std::uint16_t> AddressesOf(const FrameData& frame) {
    if (frame.mKind == FrameKind::ADDRESS_LIST) {
        return ListedAddresses(frame);
    }
    std::vector<std::uint16_t> addresses;
    addresses.reserve(frame.mLength);
    for (std::uint32_t address = frame.mAddress.mAddress; address <= 0xFFFF && addresses.size() < frame.mLength;
         ++address) {
        addresses.push_back(static_cast<std::uint16_t>(address));
    }
    return addresses;
}

}  // namespace kzm::ModbusGateway
