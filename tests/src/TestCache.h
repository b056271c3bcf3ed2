#pragma once

#include <functional>
#include <map>
#include <stdexcept>

#include "DataModel/DataObjectAdapter.h"
#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/FrameData.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/StandIn/Clock.h"
#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test {

using DeviceCache::_Quality_t;
using DeviceCache::CacheReadAccessInterface;
using DeviceCache::QUALITY_BAD;
using DeviceCache::QUALITY_GOOD;
using DeviceCache::QUALITY_QUESTIONABLE;
using DeviceCache::QUALITY_UNINITIALISED;
using DeviceProfile::FrameData;
using kz::orba::StatusCode;
using kz::orba::VortaORBAObject;
using StandIn::StoppedClock;

inline constexpr std::uint64_t NOW = 1'700'000'000'000;
inline constexpr const char* NOW_TEXT = "2023-11-14T22:13:20.000Z";

// Returns all bytes of a frame whatever the address and count. Throws for a frame that it does not have.
struct TestCache : CacheReadAccessInterface {
    struct Frame {
        Bytes bytes;
        std::uint64_t timestamp = NOW;
        _Quality_t quality = QUALITY_GOOD;
    };

    std::uint32_t ReadFrame(const std::uint8_t& frameIndex, const std::uint16_t&, std::uint8_t, std::uint8_t* buffer,
                            std::uint32_t capacity, _Quality_t& quality) const override {
        const Frame& frame = frames.at(frameIndex);
        quality = frame.quality;
        std::copy_n(frame.bytes.begin(), std::min<std::size_t>(frame.bytes.size(), capacity), buffer);
        return static_cast<std::uint32_t>(frame.bytes.size());
    }
    std::uint64_t GetFrameTimestamp(std::uint8_t frameIndex) const override {
        return frames.count(frameIndex) ? frames.at(frameIndex).timestamp : NOW;
    }

    std::map<std::uint8_t, Frame> frames;
};

inline std::shared_ptr<TestCache> MakeCache(const std::string& hex) {
    const auto cache = std::make_shared<TestCache>();
    cache->frames[0].bytes = Hex(hex);
    return cache;
}

// An object whose value is read from an element.
inline std::shared_ptr<DataObjectAdapter> ObjectOf(const Traits& traits) {
    const auto object = std::make_shared<DataObjectAdapter>("", "urn");
    object->SetAdapter(VALUE, MakeConverter(traits));
    return object;
}

inline int Number(StatusCode status) {
    return static_cast<int>(status);
}

// "status quality value" after a call that takes the quality and the value by reference.
template <typename Call>
std::string OutcomeOf(Call call, _Quality_t quality = QUALITY_QUESTIONABLE, json value = "before") {
    const StatusCode status = call(quality, value);
    return std::to_string(Number(status)) + " " + ConvertToString(quality) + " " + value.dump();
}

}  // namespace kzm::ModbusDeviceModel::Test
