#include "kzm/DateTime/DateTime.h"

#include <atomic>
#include <chrono>
#include <cstdio>

#include "kzm/StandIn/Clock.h"

namespace kzm {

namespace {

std::atomic<std::uint64_t> sStoppedAt{StandIn::RUNNING_CLOCK};

}  // namespace

void StandIn::SetClock(std::uint64_t milliseconds) {
    sStoppedAt = milliseconds;
}

std::uint64_t DateTime::DateTime::GetRealTimeInMilliseconds() {
    using namespace std::chrono;
    const std::uint64_t stoppedAt = sStoppedAt;
    if (stoppedAt != StandIn::RUNNING_CLOCK) {
        return stoppedAt;
    }
    return static_cast<std::uint64_t>(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

std::string DateTime::DateTime::GetCalendarTime() {
    return ConvertToCalendarTime(GetRealTimeInMilliseconds());
}

std::string DateTime::DateTime::ConvertToCalendarTime(std::uint64_t milliseconds) {
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> instant{std::chrono::milliseconds(milliseconds)};
    const auto day = floor<days>(instant);
    const year_month_day date{day};
    const hh_mm_ss time{instant - day};
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text;
}

}  // namespace kzm
