#pragma once

#include <cstdint>

#include "DeviceCache/Quality.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::DeviceCache {

// Age in milliseconds past which a frame is out of date: 12000 ms is still fresh, 12001 ms is not.
inline constexpr std::uint32_t DEFAULT_REGISTER_CACHE_TIMEOUT_MS = 12000;

// Whether a frame may be used without ignoring its age: it has been received, at most
// DEFAULT_REGISTER_CACHE_TIMEOUT_MS ago and not in the future. `timestamp`: as GetFrameTimestamp gives it. `now`: the
// same clock, read after the timestamp; otherwise a frame that is updated in between would seem to come from the
// future.
constexpr bool IsFresh(std::uint64_t timestamp, std::uint64_t now) {
    return timestamp != 0 && now - timestamp <= DEFAULT_REGISTER_CACHE_TIMEOUT_MS;
}

// The gateway's register cache as this library reads it. The gateway implements it and passes it with every request;
// the library never keeps it. Both operations are called from several threads at once, also while the gateway writes.
class KZM_MODBUS_EXPORT CacheReadAccessInterface {
public:
    virtual ~CacheReadAccessInterface() = default;

    // Copies `count` registers of a frame, from register `address` on, into `buffer`, two bytes per register, high byte
    // first as on the wire. Writes at most `capacity` bytes and returns how many were written (0 to 256 in practice).
    // `quality` is always written: the quality that the cache holds for the frame, QUALITY_UNINITIALISED when there is
    // nothing to read.
    virtual std::uint32_t ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t& address, std::uint8_t count,
                                    std::uint8_t* buffer, std::uint32_t capacity, _Quality_t& quality) const = 0;

    // When the frame was last received: milliseconds on the clock of DateTime::GetRealTimeInMilliseconds, 0 for never.
    virtual std::uint64_t GetFrameTimestamp(std::uint8_t frameIndex) const = 0;
};

}  // namespace kzm::ModbusDeviceModel::DeviceCache
