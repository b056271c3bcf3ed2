#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/Export.h"
#include "gateway/cache/DeviceFrames.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/json/Problem.h"

namespace kzm::ModbusGateway {

// The frames of a device at one or more instants, as text that can be kept, replayed and sent with a bug report. A
// value type: different captures may be used by different threads. Nothing of it logs.
struct KZM_GATEWAY_EXPORT Capture {
    // One frame of the device.
    struct Frame {
        std::uint8_t frameIndex;       // among the frames of the device
        RegisterCache::Frame content;  // as the register cache held it
    };

    // The frames at one instant.
    struct Snapshot {
        std::uint64_t time = 0;     // milliseconds since 1970
        std::vector<Frame> frames;  // those that had been received
    };

    // Registers side by side that a device is known not to have, as found by probing it.
    struct Missing {
        ModbusDeviceModel::ModbusFunctionCode functionCode{};  // of the request that was refused
        std::uint16_t first = 0;                               // register address
        std::uint32_t count = 0;                               // up to register 65535
        bool presumed = false;                                 // they were not asked for one by one
    };

    std::vector<Snapshot> snapshots;    // sorted by time; Parse gives at least one, or none after an error
    std::vector<Missing> missing = {};  // mostly empty: only probing finds them
    DeviceFrames frames = {};           // that they were read with, by Parse; Write takes them, too

    // Reads a capture of a device. Errors (no JSON, an unknown frame, frames that the capture describes otherwise than
    // the device, a wrong number of registers, times that run backwards, ...) and warnings (another model) are appended
    // to `problems`; after an error the result is empty. Only std::bad_alloc leaves this function, whatever the text.
    // Thread-safe.
    static Capture Parse(std::string_view text, const DeviceFrames& device, Problems& problems);
    // The same without knowing the device: its frames are those that the capture describes. An error, too, is a capture
    // without such a description, as earlier versions wrote them.
    static Capture Parse(std::string_view text, Problems& problems);

    // The frames that a cache holds now. The snapshot's time is `time` (milliseconds since 1970), or that of the newest
    // frame if it is later. std::out_of_range if the cache has fewer frames than the device. Safe beside a writer of
    // the cache.
    static Snapshot Take(const RegisterCache& cache, const DeviceFrames& device, std::uint64_t time);

    // The text form that Parse reads, with a description of the device's frames. Parse takes frames that a profile can
    // have: function codes 1 to 4, and not more registers than a request reads. std::out_of_range if a frame is none of
    // the device's.
    std::string Write(const DeviceFrames& device) const;

    // Puts the frames of a snapshot into a cache; what the cache holds of other frames stays. Throws what
    // RegisterCache::Update throws if the cache is of another device; the frames before that one are then in.
    static void Restore(const Snapshot& snapshot, RegisterCache& cache);

    // The JSON Schema (draft 7) of captures, for editors.
    static std::string_view GetSchema();
};

}  // namespace kzm::ModbusGateway
