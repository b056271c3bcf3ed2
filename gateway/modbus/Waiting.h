#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace kzm::ModbusGateway {

// How long to wait: until a point in time, or until a flag of the caller becomes true. Null: there is no flag.
struct Patience {
    std::chrono::steady_clock::time_point deadline;
    const std::atomic<bool>* stop = nullptr;

    bool IsStopped() const { return stop != nullptr && *stop; }
    // Never negative, rounded up.
    std::chrono::milliseconds GetRest() const;
};

// Waits until a descriptor is readable (POLLIN) or writable (POLLOUT), or has failed, which reading and writing then
// tell. 0, or an error number: ETIMEDOUT after the deadline, ECANCELED once the flag is true (looked at every 50 ms),
// or what poll fails with. Signals do not end it.
int WaitFor(int descriptor, short events, const Patience& patience);

// Sends all bytes to a socket or a serial port that does not block. 0, or an error number as of WaitFor or send.
int SendAll(int descriptor, std::span<const std::uint8_t> bytes, const Patience& patience);

// Reads from a socket or a serial port that does not block, until `bytes` has grown to that size. 0, or an error number
// as of WaitFor or read; ECONNRESET when the other end has closed. `bytes` then holds anything.
int ReceiveUpTo(std::size_t size, int descriptor, std::vector<std::uint8_t>& bytes, const Patience& patience);

}  // namespace kzm::ModbusGateway
