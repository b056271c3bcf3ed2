#include "Replay.h"

#include <algorithm>
#include <vector>

#include "CaptureClock.h"
#include "Text.h"
#include "gateway/json/ProblemText.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::string TimeOf(const Capture::Snapshot& snapshot) {
    return DateTime::DateTime::ConvertToCalendarTime(snapshot.time);
}

// The positions of the snapshots with that number, or with that text in their time.
std::vector<std::size_t> Matches(const Capture& capture, const std::string& at) {
    const bool isNumber = !at.empty() && std::all_of(at.begin(), at.end(), [](char c) { return c >= '0' && c <= '9'; });
    std::vector<std::size_t> matches;
    for (std::size_t i = 0; i < capture.snapshots.size(); ++i) {
        if (isNumber ? at == std::to_string(i + 1) : TimeOf(capture.snapshots[i]).find(at) != std::string::npos) {
            matches.push_back(i);
        }
    }
    return matches;
}

}  // namespace

std::size_t SnapshotAt(const Capture& capture, const std::string& at) {
    const std::vector<std::size_t> matches = Matches(capture, at);
    if (matches.size() == 1) {
        return matches.front();
    }
    const std::string found = matches.empty() ? "no snapshot" : std::to_string(matches.size()) + " snapshots";
    throw Failure(ExitStatus::NOT_FOUND,
                  found + " at " + Quoted(at) + "; the capture has " + Counted(capture.snapshots.size(), "snapshot") +
                      ", from " + TimeOf(capture.snapshots.front()) + " to " + TimeOf(capture.snapshots.back()) +
                      "; give a number from 1 on, or enough of a time");
}

void Replay(const Capture& capture, std::size_t last, RegisterCache& cache, const OnSnapshot& onSnapshot) {
    for (std::size_t i = 0; i <= last; ++i) {
        const Capture::Snapshot& snapshot = capture.snapshots.at(i);
        const CaptureClock clock(snapshot.time);
        Capture::Restore(snapshot, cache);
        onSnapshot(i, i == 0 ? USUAL_ROUND : Milliseconds(snapshot.time - capture.snapshots[i - 1].time));
    }
}

void AddAtOption(CommandSyntax& command, const std::string& usual, std::string& at) {
    command.AddText({"--at", "TIME|NUMBER",
                     "One snapshot, by its time or a part of it, or by its number from 1 on (" + usual + ")"},
                    at);
}

}  // namespace kzm::ModbusTool
