#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The registers of one device as last received, frame by frame. One writer and many readers may work at once; a reader
// gets a frame as one Update left it, never half of two.
class KZM_GATEWAY_EXPORT RegisterCache final : public ModbusDeviceModel::DeviceCache::CacheReadAccessInterface {
public:
    using Quality = ModbusDeviceModel::DeviceCache::_Quality_t;

    // What one frame holds. Never received: no registers, timestamp 0, quality Uninitialised.
    struct Frame {
        std::vector<std::uint16_t> registers;  // in the order of the frame's addresses
        std::uint64_t timestamp = 0;           // milliseconds since 1970
        Quality quality = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
    };

    // Learns where each frame's registers stand on the device. Every frame starts as never received.
    explicit RegisterCache(const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames);
    ~RegisterCache() override;

    // Replaces a frame whole. For coils and discrete inputs a register is one bit, 0 or 1. `timestamp`: milliseconds
    // since 1970. Throws std::out_of_range for an unknown frame, std::invalid_argument for a wrong number of registers;
    // the frame then stays as it was.
    void Update(std::uint8_t frameIndex, std::span<const std::uint16_t> registers, std::uint64_t timestamp,
                Quality quality = ModbusDeviceModel::DeviceCache::QUALITY_GOOD);

    // Marks what a frame holds, and keeps registers and timestamp. A frame that was never received stays so. Throws
    // std::out_of_range for an unknown frame.
    void SetQuality(std::uint8_t frameIndex, Quality quality);

    // A copy of what a frame holds. Throws std::out_of_range for an unknown frame.
    Frame GetFrame(std::uint8_t frameIndex) const;

    // No data (0 bytes, quality Uninitialised) for an unknown frame, a frame never received, registers that are not all
    // in the frame, and more bytes than the buffer holds.
    std::uint32_t ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t& address, std::uint8_t count,
                            std::uint8_t* buffer, std::uint32_t capacity, Quality& quality) const override;
    // 0 for an unknown frame and one never received.
    std::uint64_t GetFrameTimestamp(std::uint8_t frameIndex) const override;

private:
    struct Slot;
    std::vector<std::unique_ptr<Slot>> mSlots;
};

}  // namespace kzm::ModbusGateway
