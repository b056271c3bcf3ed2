#pragma once

#include <functional>
#include <optional>
#include <string>

#include "CommandLine.h"
#include "gateway/capture/Capture.h"

namespace kzm::ModbusTool {

// The time of a round where nobody has said how long one takes.
constexpr Milliseconds USUAL_ROUND{1000};

// The position among the snapshots of a capture of the one that `at` names: by its number, 1 is the first, or by its
// time or a part of it ("09:30:07"). Throws Failure with NOT_FOUND unless there is exactly one.
std::size_t SnapshotAt(const ModbusGateway::Capture& capture, const std::string& at);

// Passes on the position of a snapshot and how long its round took: since the snapshot before it.
using OnSnapshot = std::function<void(std::size_t position, Milliseconds round)>;

// Puts the snapshots into the cache, one after another, up to and including the one at `last`; calls `onSnapshot` after
// each, with the platform's clock stopped at its time.
void Replay(const ModbusGateway::Capture& capture, std::size_t last, ModbusGateway::RegisterCache& cache,
            const OnSnapshot& onSnapshot);

// "--at".
void AddAtOption(CommandSyntax& command, const std::string& usual, std::string& at);

}  // namespace kzm::ModbusTool
