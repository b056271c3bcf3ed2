#pragma once

#include <cstdint>
#include <vector>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

// Register values of one write request. Built and filled by one thread.
struct KZM_MODBUS_EXPORT FrameDataValue {
    // No registers, function code 0.
    FrameDataValue() = default;
    // `registerCount` registers from `startAddress` on, all 0.
    FrameDataValue(ModbusFunctionCode functionCode, std::uint16_t startAddress, std::uint16_t registerCount);

    // Sets `count` registers from `address` on. Without a bitmask the registers are replaced. With one (two bytes per
    // register, high byte first) the masked bits are added to the registers, so that elements sharing a register each
    // contribute theirs; registers past the bitmask stay as they are.
    //
    // False, and nothing written: `values` is null, or the range is not within the frame. True, and nothing written:
    // the bitmask has an odd number of bytes or more words than `count`; this is logged as an error, and the write goes
    // on.
    bool SetValue(std::uint16_t address, const std::uint16_t* values, std::uint16_t count,
                  const std::vector<std::uint8_t>* bitmask);
    // One register, without a bitmask.
    bool SetValue(std::uint16_t address, std::uint16_t value);

    ModbusFunctionCode mFunctionCode{};  // of the request
    std::uint16_t mStartAddress = 0;     // first register, 0 to 65535
    std::vector<std::uint16_t> mValues;  // of the registers from there on
};

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
