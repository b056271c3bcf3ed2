#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "DeviceProfile/RegisterAddress.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

// How the registers of a frame are given.
enum class FrameKind : std::uint32_t {
    CONTIGUOUS = 0,                  // a range
    ADDRESS_LIST = 1,                // scattered: one address per register
    CONTIGUOUS_WITH_PARAMETERS = 2,  // a range, with two extra parameters
};

// What a frame is, but for a list of addresses of its own. The flag, the signed parameter and the two extra parameters
// mean something to whoever built the frame; they are kept and passed on.
struct FrameDescription {
    // Second extra parameter of a frame without one.
    static constexpr std::uint32_t NO_SECOND_PARAMETER = 0xFFFFFFFF;

    ModbusFunctionCode mFunctionCode;                           // of the read request
    bool mFlag;                                                 // the builder's
    std::int16_t mSignedParameter;                              // the builder's
    std::uint16_t mLength;                                      // registers (for a scattered frame: addresses)
    RegisterAddress mAddress;                                   // first register, or the addresses
    FrameKind mKind;                                            // which of the two mAddress is
    std::uint32_t mFirstExtraParameter = 0;                     // the builder's
    std::uint32_t mSecondExtraParameter = NO_SECOND_PARAMETER;  // the builder's
};

// One Modbus request that the gateway issues cyclically: a function code and a set of registers.
//
// A copy points into its own address list where the original points into its own; a pointer to a caller's array is
// copied as it is. A moved-from frame is empty. Frames are read by many threads once the device model is built.
struct KZM_MODBUS_EXPORT FrameData : FrameDescription {
    // Most addresses that AddAddressesToFrame puts into one frame.
    static constexpr std::size_t MAX_LISTED_ADDRESSES = 100;

    // A contiguous range of `length` registers.
    FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
              std::uint16_t startAddress);
    // A scattered frame over the caller's array, which is neither copied nor owned.
    FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
              const std::uint16_t* addresses);
    // A scattered frame over a copy of the addresses, in the caller's order; `length` is kept as given.
    FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
              const std::vector<std::uint16_t>& addresses);
    // An empty scattered frame, to be filled by AddAddressesToFrame.
    FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter);
    // A contiguous range with two extra parameters.
    FrameData(ModbusFunctionCode functionCode, bool flag, std::int16_t signedParameter, std::uint16_t length,
              std::uint16_t startAddress, std::uint32_t firstExtraParameter, std::uint32_t secondExtraParameter);

    // As told above.
    FrameData(const FrameData& other);
    FrameData(FrameData&& other) noexcept;
    FrameData& operator=(const FrameData& other);
    FrameData& operator=(FrameData&& other) noexcept;
    ~FrameData() = default;

    // Adds the registers first ... first + count - 1 to a scattered frame's own list, which stays sorted and free of
    // duplicates. A list that is not sorted yet is sorted and freed of duplicates first; a frame over a caller's array
    // starts from an empty list. Only while the model is assembled, by one thread.
    //
    // SUCCESS: all are in the list. OUT_OF_RANGE: the frame is not scattered, nothing is changed; or the list is full,
    // those that fitted are in it. ADDRESS_OVERFLOW: the range goes past register 65535, nothing is added. Length and
    // address follow the list in every case but the first OUT_OF_RANGE. Nothing is logged.
    kz::orba::StatusCode AddAddressesToFrame(std::uint16_t first, std::uint16_t count);

    std::vector<std::uint16_t> mAddressList;  // of a scattered frame with addresses of its own
};

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
