#pragma once

#if __has_include("kzm/StandIn/Clock.h")

#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusTool {

// Holds the platform's clock at a capture's time (milliseconds since 1970), so that its frames are as old as they were.
using CaptureClock = StandIn::StoppedClock;

}  // namespace kzm::ModbusTool

#else

#include <cstdint>

#include "ExitStatus.h"

namespace kzm::ModbusTool {

// For a platform whose clock cannot be set: today all frames of a capture are out of date.
class CaptureClock {
public:
    explicit CaptureClock(std::uint64_t) {
        throw Failure(ExitStatus::WRONG_USAGE,
                      "the clock of this platform cannot be set to the time of a capture; "
                      "serve the capture with `kzm-modbus simulate`, and poll that");
    }
};

}  // namespace kzm::ModbusTool

#endif
