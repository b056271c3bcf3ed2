#pragma once

#include <atomic>
#include <chrono>

namespace kzm::ModbusTool {

// Turns SIGINT and SIGTERM into a flag, so that a command can end cleanly. At most one object at a time.
class StopSignal {
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    // Becomes true with the first signal.
    const std::atomic<bool>& GetFlag() const;

    // Waits for a signal; true as soon as one came, false at the deadline. Any number of threads.
    bool WaitUntil(std::chrono::steady_clock::time_point deadline) const;
};

}  // namespace kzm::ModbusTool
