#include "gateway/RegisterCache.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>

#include "gateway/FrameAddresses.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
using ModbusDeviceModel::DeviceProfile::FrameData;

namespace {

// Where a register of the device stands among those of a frame.
struct Place {
    std::uint16_t address;
    std::uint16_t position;
};

// In the order of the addresses, each once.
std::vector<Place> PlacesOf(const std::vector<std::uint16_t>& addresses) {
    std::map<std::uint16_t, std::uint16_t> positions;
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        positions.try_emplace(addresses[i], static_cast<std::uint16_t>(i));
    }
    std::vector<Place> places;
    places.reserve(positions.size());
    for (const auto& [address, position] : positions) {
        places.push_back({address, position});
    }
    return places;
}

}  // namespace

struct RegisterCache::Slot {
    explicit Slot(const std::vector<std::uint16_t>& addresses)
        : places(PlacesOf(addresses)), registerCount(addresses.size()) {
        frame.registers.reserve(registerCount);
    }

    // The places of `count` registers from `address` on; null when one of them is not in the frame.
    const Place* Find(std::uint16_t address, std::uint8_t count) const {
        const auto first = std::ranges::lower_bound(places, address, {}, &Place::address);
        if (count == 0 || places.end() - first < count) {
            return nullptr;
        }
        // Addresses rise by at least one, so that the two ends tell that none is missing in between.
        return first->address == address && first[count - 1].address == address + count - 1 ? &*first : nullptr;
    }

    const std::vector<Place> places;
    const std::size_t registerCount;
    mutable std::shared_mutex mutex;
    Frame frame;
};

RegisterCache::RegisterCache(const std::vector<FrameData>& frames) {
    for (const FrameData& frame : frames) {
        mSlots.push_back(std::make_unique<Slot>(AddressesOf(frame)));
    }
}

RegisterCache::~RegisterCache() = default;

void RegisterCache::Update(std::uint8_t frameIndex, std::span<const std::uint16_t> registers, std::uint64_t timestamp,
                           Quality quality) {
    Slot& slot = *mSlots.at(frameIndex);
    if (registers.size() != slot.registerCount) {
        throw std::invalid_argument("wrong number of registers for the frame");
    }
    const std::lock_guard lock(slot.mutex);
    slot.frame.registers.assign(registers.begin(), registers.end());
    slot.frame.timestamp = timestamp;
    slot.frame.quality = quality;
}

void RegisterCache::SetQuality(std::uint8_t frameIndex, Quality quality) {
    Slot& slot = *mSlots.at(frameIndex);
    const std::lock_guard lock(slot.mutex);
    if (!slot.frame.registers.empty()) {
        slot.frame.quality = quality;
    }
}

RegisterCache::Frame RegisterCache::GetFrame(std::uint8_t frameIndex) const {
    const Slot& slot = *mSlots.at(frameIndex);
    const std::shared_lock lock(slot.mutex);
    return slot.frame;
}

std::uint32_t RegisterCache::ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t& address, std::uint8_t count,
                                       std::uint8_t* buffer, std::uint32_t capacity, Quality& quality) const {
    quality = QUALITY_UNINITIALISED;
    const std::uint32_t byteCount = 2U * count;
    if (frameIndex >= mSlots.size() || byteCount > capacity) {
        return 0;
    }
    const Slot& slot = *mSlots[frameIndex];
    const Place* place = slot.Find(address, count);
    const std::shared_lock lock(slot.mutex);
    if (place == nullptr || slot.frame.registers.empty()) {
        return 0;
    }
    for (const Place* end = place + count; place != end; ++place) {
        const std::uint16_t value = slot.frame.registers[place->position];
        *buffer++ = static_cast<std::uint8_t>(value >> 8);
        *buffer++ = static_cast<std::uint8_t>(value & 0xFF);
    }
    quality = slot.frame.quality;
    return byteCount;
}

std::uint64_t RegisterCache::GetFrameTimestamp(std::uint8_t frameIndex) const {
    if (frameIndex >= mSlots.size()) {
        return 0;
    }
    const Slot& slot = *mSlots[frameIndex];
    const std::shared_lock lock(slot.mutex);
    return slot.frame.timestamp;
}

}  // namespace kzm::ModbusGateway
