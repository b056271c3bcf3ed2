#pragma once

#include <cstdint>

#include "kzm/Platform/Export.h"

namespace kzm::StandIn {

inline constexpr std::uint64_t RUNNING_CLOCK = ~std::uint64_t{0};

// Stops the platform's clock of this process at an instant (milliseconds since 1970); RUNNING_CLOCK lets it run again.
// For tests and for the replay of captures. Thread-safe.
KZM_PLATFORM_EXPORT void SetClock(std::uint64_t milliseconds);

// Stops the clock as long as this object lives.
class StoppedClock {
public:
    explicit StoppedClock(std::uint64_t milliseconds) { SetClock(milliseconds); }
    ~StoppedClock() { SetClock(RUNNING_CLOCK); }
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;
};

}  // namespace kzm::StandIn
