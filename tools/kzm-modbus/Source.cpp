#include "Source.h"

#include "DeviceErrors.h"
#include "DeviceRounds.h"
#include "Files.h"
#include "Replay.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

void FollowCapture(const Source& source, const LoadedProfile& profile, RegisterCache& cache,
                   const std::function<void(const Moment&)>& onMoment) {
    const Capture capture = LoadCapture(source.capture, profile);
    const std::size_t last = source.at.empty() ? capture.snapshots.size() - 1 : SnapshotAt(capture, source.at);
    Replay(capture, last, cache, [&](std::size_t position, Milliseconds round) {
        const std::string time = capture.snapshots.size() > 1 ? DateTime::DateTime::GetCalendarTime() : "";
        onMoment({position == last, round, time});
    });
}

void FollowDevice(const ModbusSettings& device, std::uint64_t rounds, const LoadedProfile& profile,
                  RegisterCache& cache, const std::function<void(const Moment&)>& onMoment) {
    const Repetition repetition{rounds};
    const DeviceFrames frames = profile.GetDeviceFrames();
    ErrorReport report;
    std::uint64_t done = 0;
    ReadRounds(device, repetition, frames, cache, [&](const ModbusReader::Round& round) {
        const std::vector<std::string> errors = DescribeErrors(round, frames);
        if (++done == 1 && round.framesRead == 0 && !errors.empty()) {
            throw Failure(ExitStatus::NOT_REACHED, ToText(device) + ": no frame could be read: " + errors.front());
        }
        report.Report(errors);
        onMoment({done == rounds, repetition.interval, ""});
    });
}

}  // namespace

void Follow(const Source& source, std::uint64_t rounds, const LoadedProfile& profile, const Cache& cache,
            const std::function<void(const Moment&)>& onMoment) {
    if (!source.capture.empty()) {
        FollowCapture(source, profile, *cache, onMoment);
    } else if (IsDeviceGiven(source.device)) {
        FollowDevice(source.device, rounds, profile, *cache, onMoment);
    } else {
        onMoment({/*isLast=*/true, USUAL_ROUND, ""});
    }
}

}  // namespace kzm::ModbusTool
