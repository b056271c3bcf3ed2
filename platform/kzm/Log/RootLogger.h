#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "kzm/Platform/Export.h"

namespace kzm::Log {

// How important a log line is; a logger prints the lines whose number is at most its level.
enum class OrbaLogLevel : std::int32_t {
    NONE = 0,
    ERROR = 3,
    WARNING = 4,
    INFORMATION = 6,
    TRACE = 7,
};

// The process's one logger. It outlives every static object, so that destructors may log. Thread-safe; lines are handed
// to the sink one at a time.
class KZM_PLATFORM_EXPORT RootLogger {
public:
    // Takes one line, without a line feed.
    using Sink = std::function<void(OrbaLogLevel level, const char* line)>;

    // Creates the logger on the first call.
    static RootLogger& GetInstance();

    // WARNING when the process starts.
    OrbaLogLevel GetLevel() const { return mLevel.load(std::memory_order_relaxed); }
    void SetLevel(OrbaLogLevel level);

    // Where lines go. Standard error when the process starts, and for an empty sink.
    void SetSink(Sink sink);

    // Formats as std::printf does and hands the line to the sink; does nothing for a level above the logger's. Never
    // throws: an exception of the sink loses the line, and a long line is cut after 511 bytes when memory runs out.
    void Print(OrbaLogLevel level, const char* format, ...) __attribute__((format(printf, 3, 4)));

private:
    RootLogger() = default;

    std::atomic<OrbaLogLevel> mLevel{OrbaLogLevel::WARNING};
};

}  // namespace kzm::Log
