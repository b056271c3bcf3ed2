#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "gateway/cache/DeviceFrames.h"
#include "gateway/capture/Capture.h"

namespace kzm::ModbusGateway {

// Registers of one function at consecutive addresses, at each snapshot. Frames that touch are one run, because a large
// block may have been read in several requests.
struct RegisterRun {
    std::uint8_t function;                              // 1 to 4, the number of the Modbus function
    std::uint16_t address;                              // of the first register
    std::vector<bool> isFrameStart;                     // one per register
    std::vector<std::vector<std::uint16_t>> snapshots;  // at least one, all of the same size

    // Rather than of coils or discrete inputs.
    bool IsOfRegisters() const { return function >= 3; }
    std::size_t GetSize() const { return isFrameStart.size(); }
    std::span<const std::uint16_t> At(std::size_t snapshot, std::size_t first, std::size_t count) const {
        return std::span(snapshots[snapshot]).subspan(first, count);
    }
};

struct RegisterRuns {
    // At most this many snapshots are kept, evenly chosen: what moves slowly moves more between them.
    static constexpr std::size_t MAX_SNAPSHOTS = 8;

    std::vector<std::uint64_t> times;  // of the snapshots, milliseconds since 1970
    std::vector<RegisterRun> runs;     // by function and address

    // A frame that a snapshot lacks, or that is Bad in it, has the registers of the snapshot before, or else of the
    // first that has it. Frames of no snapshot are left out.
    static RegisterRuns Of(const DeviceFrames& device, const std::vector<Capture::Snapshot>& snapshots);
};

}  // namespace kzm::ModbusGateway
