#pragma once

#include <cstdint>
#include <string>

#include "kzm/Platform/Export.h"

namespace kzm::DateTime {

// The platform's clock. Both operations read the same clock and are thread-safe.
class KZM_PLATFORM_EXPORT DateTime {
public:
    // Milliseconds since 1970-01-01T00:00:00Z.
    static std::uint64_t GetRealTimeInMilliseconds();

    // The same instant as text: ISO 8601 in UTC with milliseconds, e.g. "2026-03-14T09:26:53.589Z".
    static std::string GetCalendarTime();

    // An instant of this clock as GetCalendarTime writes it.
    static std::string ConvertToCalendarTime(std::uint64_t milliseconds);
};

}  // namespace kzm::DateTime
