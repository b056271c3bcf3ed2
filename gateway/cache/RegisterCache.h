#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The registers of one device as last received, frame by frame. Logs nothing.
//
// Any number of threads may read while others write: a reader takes no lock and gets a frame as one write left it,
// never parts of two. Writers of the same frame wait for each other.
class KZM_GATEWAY_EXPORT RegisterCache final : public ModbusDeviceModel::DeviceCache::CacheReadAccessInterface {
public:
    // The library's quality of a value, here that of a whole frame.
    using Quality = ModbusDeviceModel::DeviceCache::_Quality_t;

    // What one frame holds. Never received: no registers, timestamp 0, quality Uninitialised.
    struct Frame {
        std::vector<std::uint16_t> registers;  // in the order of the frame's addresses
        std::uint64_t timestamp = 0;           // milliseconds since 1970
        Quality quality = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;  // of the frame
    };

    // Takes from each frame the addresses of its registers; a frame's index is its position in the list. Every frame
    // starts as never received.
    explicit RegisterCache(const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames);
    ~RegisterCache() override;

    // Replaces the registers of a frame, in the order of its addresses, its timestamp (milliseconds since 1970) and its
    // quality. A coil or discrete input is a register of 0 or 1. Throws std::out_of_range for an unknown frame and
    // std::invalid_argument for a number of registers that is not the frame's; the frame then stays as it was.
    void Update(std::uint8_t frameIndex, std::span<const std::uint16_t> registers, std::uint64_t timestamp,
                Quality quality = ModbusDeviceModel::DeviceCache::QUALITY_GOOD);

    // Sets the quality of a frame and keeps its registers and timestamp; a frame that was never received has none.
    // `exception`: the number of the exception with which the device answered, kept for GetException; 0 for none.
    // Throws std::out_of_range for an unknown frame.
    void SetQuality(std::uint8_t frameIndex, Quality quality, std::uint8_t exception = 0);

    // The exception that the last answer for a frame was; 0 if it had registers, and for an unknown frame.
    std::uint8_t GetException(std::uint8_t frameIndex) const;

    // A copy of a frame. Throws std::out_of_range for an unknown frame.
    Frame GetFrame(std::uint8_t frameIndex) const;

    // Copies `count` registers from `address` on, high byte first, sets the frame's quality, and returns the number of
    // bytes. 0, with quality Uninitialised and the buffer untouched, for an unknown frame, a frame never received, a
    // count of 0, registers that are not all in the frame, and more bytes than `capacity`.
    std::uint32_t ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t& address, std::uint8_t count,
                            std::uint8_t* buffer, std::uint32_t capacity, Quality& quality) const override;
    // Milliseconds since 1970; 0 for an unknown frame and for one never received.
    std::uint64_t GetFrameTimestamp(std::uint8_t frameIndex) const override;

private:
    struct Slot;
    std::vector<std::unique_ptr<Slot>> mSlots;
};

}  // namespace kzm::ModbusGateway
