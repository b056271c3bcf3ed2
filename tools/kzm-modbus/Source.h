#pragma once

#include <functional>
#include <string>

#include "ObjectReading.h"
#include "Options.h"

namespace kzm::ModbusTool {

// Where registers come from: a capture up to one of its snapshots, a device, or nowhere.
struct Source {
    std::string capture;  // empty for a device
    std::string at;       // which snapshot; empty for the last
    ModbusGateway::ModbusSettings device = {};
};

// The registers of one moment are in the cache, and the clock is at its time.
struct Moment {
    bool isLast;
    Milliseconds round;  // how long a round takes
    std::string time;    // of the snapshot in a series, otherwise empty
};

// Fills the cache and calls `onMoment`: after each snapshot up to the one that is asked for, after each of `rounds` of
// a device, or once with an empty cache. Errors of a device's frames go to standard error. Throws Failure with
// NOT_REACHED, and one line that tells why, for a device that gives no frame.
void Follow(const Source& source, std::uint64_t rounds, const ModbusGateway::LoadedProfile& profile, const Cache& cache,
            const std::function<void(const Moment& moment)>& onMoment);

}  // namespace kzm::ModbusTool
