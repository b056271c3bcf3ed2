#pragma once

#include <algorithm>
#include <array>
#include <atomic>

#include "DeviceCache/CacheReadAccessInterface.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusDeviceModel {

// The cheapest cache that there can be, so that what a request costs is the library's: one frame of 125 registers from
// address 100 on that never changes.
class OneFrameCache final : public DeviceCache::CacheReadAccessInterface {
public:
    std::uint32_t ReadFrame(const std::uint8_t&, const std::uint16_t& address, std::uint8_t count, std::uint8_t* buffer,
                            std::uint32_t, DeviceCache::_Quality_t& quality) const override {
        quality = DeviceCache::QUALITY_GOOD;
        std::copy_n(mBytes.begin() + 2 * ((address - 100) % 120), 2 * count, buffer);
        return 2U * count;
    }
    std::uint64_t GetFrameTimestamp(std::uint8_t) const override { return mTimestamp; }

    // Requests read the running clock, as they do in a gateway; a frame is good for 12 seconds of it.
    void Refresh() { mTimestamp = DateTime::DateTime::GetRealTimeInMilliseconds(); }

private:
    // Every register is 5.
    static constexpr std::array<std::uint8_t, 250> FIVES = [] {
        std::array<std::uint8_t, 250> bytes{};
        for (std::size_t i = 1; i < bytes.size(); i += 2) {
            bytes[i] = 5;
        }
        return bytes;
    }();

    std::array<std::uint8_t, 250> mBytes = FIVES;
    std::atomic<std::uint64_t> mTimestamp{0};
};

}  // namespace kzm::ModbusDeviceModel
