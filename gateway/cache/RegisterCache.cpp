#include "gateway/cache/RegisterCache.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "gateway/cache/FrameAddresses.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
using ModbusDeviceModel::DeviceProfile::FrameData;

namespace {

// Position of a device's register among the registers of a frame.
struct Place {
    std::uint16_t address;
    std::uint16_t position;
};

// Sorted by address, without duplicates.
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

// One frame behind a seqlock: an odd version means that a write is in progress, and readers retry until the version is
// even and the same before and after. A shared lock would bounce its cache line between the readers' processors. Data
// is loaded with acquire and stored with release, so that a reader that sees any of a write also sees its version.
struct RegisterCache::Slot {
    explicit Slot(const std::vector<std::uint16_t>& addresses)
        : places(PlacesOf(addresses)), registers(addresses.size()) {}

    // The places of `count` registers from `address` on; null if any of them is not in the frame.
    const Place* Find(std::uint16_t address, std::uint8_t count) const {
        const auto first = std::ranges::lower_bound(places, address, {}, &Place::address);
        if (count == 0 || places.end() - first < count) {
            return nullptr;
        }
        // Addresses are unique and ascending: if the last is count - 1 past the first, none is missing in between.
        return first->address == address && first[count - 1].address == address + count - 1 ? &*first : nullptr;
    }

    template <typename Copy>
    void Read(const Copy& copy) const {
        for (;; std::this_thread::yield()) {
            const std::uint32_t before = version.load(std::memory_order_acquire);
            if (before % 2 == 0) {
                copy();
                if (version.load(std::memory_order_relaxed) == before) {
                    return;
                }
            }
        }
    }

    template <typename Change>
    void Write(const Change& change) {
        const std::lock_guard lock(writing);
        const std::uint32_t before = version.load(std::memory_order_relaxed);
        version.store(before + 1, std::memory_order_relaxed);
        change();
        version.store(before + 2, std::memory_order_release);
    }

    template <typename Value>
    static void Set(std::atomic<Value>& place, Value value) {
        place.store(value, std::memory_order_release);
    }

    template <typename Value>
    static Value Get(const std::atomic<Value>& place) {
        return place.load(std::memory_order_acquire);
    }

    const std::vector<Place> places;
    std::mutex writing;
    std::atomic<std::uint32_t> version{0};
    std::atomic<bool> received{false};
    std::vector<std::atomic<std::uint16_t>> registers;
    std::atomic<std::uint64_t> timestamp{0};
    std::atomic<Quality> quality{QUALITY_UNINITIALISED};
    std::atomic<std::uint8_t> exception{0};  // of the last answer; 0 for none
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
    if (registers.size() != slot.registers.size()) {
        throw std::invalid_argument("wrong number of registers for the frame");
    }
    slot.Write([&] {
        for (std::size_t i = 0; i < registers.size(); ++i) {
            Slot::Set(slot.registers[i], registers[i]);
        }
        Slot::Set(slot.received, !registers.empty());
        Slot::Set(slot.timestamp, timestamp);
        Slot::Set(slot.quality, quality);
        Slot::Set(slot.exception, std::uint8_t{0});
    });
}

void RegisterCache::SetQuality(std::uint8_t frameIndex, Quality quality, std::uint8_t exception) {
    Slot& slot = *mSlots.at(frameIndex);
    slot.Write([&] {
        Slot::Set(slot.exception, exception);
        if (Slot::Get(slot.received)) {
            Slot::Set(slot.quality, quality);
        }
    });
}

RegisterCache::Frame RegisterCache::GetFrame(std::uint8_t frameIndex) const {
    const Slot& slot = *mSlots.at(frameIndex);
    Frame frame;
    slot.Read([&] {
        frame.registers.resize(Slot::Get(slot.received) ? slot.registers.size() : 0);
        std::transform(slot.registers.begin(), slot.registers.begin() + std::ssize(frame.registers),
                       frame.registers.begin(), [](const auto& place) { return Slot::Get(place); });
        frame.timestamp = Slot::Get(slot.timestamp);
        frame.quality = Slot::Get(slot.quality);
    });
    return frame;
}

std::uint32_t RegisterCache::ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t& address, std::uint8_t count,
                                       std::uint8_t* buffer, std::uint32_t capacity, Quality& quality) const {
    quality = QUALITY_UNINITIALISED;
    const std::uint32_t byteCount = 2U * count;
    if (frameIndex >= mSlots.size() || byteCount > capacity) {
        return 0;
    }
    const Slot& slot = *mSlots[frameIndex];
    const Place* const place = slot.Find(address, count);
    if (place == nullptr || !Slot::Get(slot.received)) {
        return 0;
    }
    slot.Read([&] {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint16_t value = Slot::Get(slot.registers[place[i].position]);
            buffer[2 * i] = static_cast<std::uint8_t>(value >> 8);
            buffer[2 * i + 1] = static_cast<std::uint8_t>(value & 0xFF);
        }
        quality = Slot::Get(slot.quality);
    });
    return byteCount;
}

std::uint8_t RegisterCache::GetException(std::uint8_t frameIndex) const {
    return frameIndex < mSlots.size() ? Slot::Get(mSlots[frameIndex]->exception) : std::uint8_t{0};
}

std::uint64_t RegisterCache::GetFrameTimestamp(std::uint8_t frameIndex) const {
    return frameIndex < mSlots.size() ? Slot::Get(mSlots[frameIndex]->timestamp) : 0;
}

}  // namespace kzm::ModbusGateway
