#pragma once

#include <atomic>
#include <chrono>

namespace kzm::ModbusTool {

// Lets SIGINT and SIGTERM end a command in good order. At most one at a time.
class StopSignal {
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    // Becomes true with the first signal.
    const std::atomic<bool>& GetFlag() const;

    // Whether the signal came before the deadline; returns at once when it did. Any number of threads.
    bool WaitUntil(std::chrono::steady_clock::time_point deadline) const;
};

}  // namespace kzm::ModbusTool
