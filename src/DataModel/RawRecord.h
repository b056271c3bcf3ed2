#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace kzm::ModbusDeviceModel::DataModel {

// The raw value record: 256 bytes, zero before an element is gathered into it. Numbers stand in it least significant
// byte first on every host; texts end with a NUL, since an element has at most 255 bytes.
struct myData {
    std::array<std::uint8_t, 256> mBytes{};

    void SetUnsigned(std::uint64_t number) {
        for (std::size_t i = 0; i < 8; ++i) {
            mBytes[i] = static_cast<std::uint8_t>(number >> (8 * i));
        }
    }

    std::uint64_t Unsigned64() const {
        std::uint64_t number = 0;
        for (std::size_t i = 8; i-- > 0;) {
            number = number << 8 | mBytes[i];
        }
        return number;
    }
    std::uint32_t Unsigned32() const { return static_cast<std::uint32_t>(Unsigned64()); }
    std::uint16_t Unsigned16() const { return static_cast<std::uint16_t>(Unsigned64()); }
    std::uint8_t Unsigned8() const { return mBytes[0]; }
    std::int64_t Signed64() const { return static_cast<std::int64_t>(Unsigned64()); }
    std::int32_t Signed32() const { return static_cast<std::int32_t>(Unsigned64()); }
    std::int16_t Signed16() const { return static_cast<std::int16_t>(Unsigned64()); }
    std::int8_t Signed8() const { return static_cast<std::int8_t>(mBytes[0]); }
    float Float() const { return std::bit_cast<float>(Unsigned32()); }
    double Double() const { return std::bit_cast<double>(Unsigned64()); }
    // The 16-bit register `index` of a number, 0 being the least significant.
    std::uint16_t Word(std::size_t index) const {
        return static_cast<std::uint16_t>(mBytes[2 * index] | mBytes[2 * index + 1] << 8);
    }

    char* Text() { return reinterpret_cast<char*>(mBytes.data()); }
    const char* Text() const { return reinterpret_cast<const char*>(mBytes.data()); }
};

}  // namespace kzm::ModbusDeviceModel::DataModel
