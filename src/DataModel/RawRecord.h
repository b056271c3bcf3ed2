#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>

namespace kzm::ModbusDeviceModel::DataModel {

// The raw bytes of one element between gathering and conversion, with the views in which they are read. Numbers are
// kept least significant byte first on every host. Used by one thread.
struct myData {
    std::array<std::uint8_t, 256> mBytes;  // as gathered; a NUL follows a text

    // Clears only the bytes that numeric views may read and a NUL behind them.
    myData() { std::fill_n(mBytes.begin(), 16, std::uint8_t{0}); }

    // Ends a text of `length` bytes, at most 255, with a NUL.
    void End(std::size_t length) { mBytes[length] = 0; }

    // Sets the first eight bytes. Without a loop, so that compilers make it one instruction.
    void SetUnsigned(std::uint64_t number) {
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            ((mBytes[I] = static_cast<std::uint8_t>(number >> (8 * I))), ...);
        }
        (std::make_index_sequence<8>());
    }

    // The first bytes as a number; the upper bytes of a wider one are dropped.
    std::uint64_t Unsigned64() const {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return ((std::uint64_t{mBytes[I]} << (8 * I)) | ...);
        }
        (std::make_index_sequence<8>());
    }
    std::uint32_t Unsigned32() const { return static_cast<std::uint32_t>(Unsigned64()); }
    std::uint16_t Unsigned16() const { return static_cast<std::uint16_t>(Unsigned64()); }
    std::uint8_t Unsigned8() const { return mBytes[0]; }
    std::int64_t Signed64() const { return static_cast<std::int64_t>(Unsigned64()); }
    std::int32_t Signed32() const { return static_cast<std::int32_t>(Unsigned64()); }
    std::int16_t Signed16() const { return static_cast<std::int16_t>(Unsigned64()); }
    std::int8_t Signed8() const { return static_cast<std::int8_t>(mBytes[0]); }
    // The first four and eight bytes as IEEE 754 numbers.
    float Float() const { return std::bit_cast<float>(Unsigned32()); }
    double Double() const { return std::bit_cast<double>(Unsigned64()); }
    // The 16-bit word `index` of a number, 0 to 127, 0 being the least significant.
    std::uint16_t Word(std::size_t index) const {
        return static_cast<std::uint16_t>(mBytes[2 * index] | mBytes[2 * index + 1] << 8);
    }

    // The bytes as text, which ends at the first NUL.
    char* Text() { return reinterpret_cast<char*>(mBytes.data()); }
    const char* Text() const { return reinterpret_cast<const char*>(mBytes.data()); }
};

}  // namespace kzm::ModbusDeviceModel::DataModel
