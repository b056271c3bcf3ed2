#pragma once

#include <cstdint>

namespace kzm::ModbusDeviceModel::DeviceProfile {

// Where the registers of a frame are on the device. The frame's kind tells which member is set.
union RegisterAddress {
    std::uint16_t mAddress;           // first register of a contiguous range, 0 to 65535
    const std::uint16_t* mAddresses;  // one address per register of a scattered frame; not owned

    // Sets the member of that type.
    explicit RegisterAddress(std::uint16_t address) : mAddress(address) {}
    explicit RegisterAddress(const std::uint16_t* addresses) : mAddresses(addresses) {}
};

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
