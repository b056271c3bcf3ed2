#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/Export.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/json/Problem.h"
#include "gateway/profile/LoadedProfile.h"

namespace kzm::ModbusGateway {

// The frames of a device at one or more instants, as text that can be kept, replayed and sent with a bug report.
struct KZM_GATEWAY_EXPORT Capture {
    struct Frame {
        std::uint8_t frameIndex;
        RegisterCache::Frame content;
    };
    struct Snapshot {
        std::uint64_t time = 0;     // milliseconds since 1970
        std::vector<Frame> frames;  // those that had been received
    };

    std::vector<Snapshot> snapshots;  // in the order of time; at least one

    // Reads a capture made with a profile. Any error (no JSON, an unknown frame, a wrong number of registers, times
    // that run backwards, ...) is put into `problems`; the capture is then empty. Never throws for the text.
    static Capture Parse(std::string_view text, const LoadedProfile& profile, Problems& problems);

    // The frames of a cache as they are now. The snapshot's time is `time`, or that of the newest frame if it is later.
    static Snapshot Take(const RegisterCache& cache, const LoadedProfile& profile, std::uint64_t time);

    // The text form that Parse reads.
    std::string Write(const LoadedProfile& profile) const;

    // Puts the frames of a snapshot into a cache. Frames that the snapshot does not hold stay as they are.
    static void Restore(const Snapshot& snapshot, RegisterCache& cache);

    // The JSON Schema (draft 7) of captures.
    static std::string_view GetSchema();
};

}  // namespace kzm::ModbusGateway
