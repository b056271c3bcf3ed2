#include "Recording.h"

#include "DeviceErrors.h"
#include "DeviceRounds.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

Capture Record(const ModbusSettings& connection, const Repetition& repetition, const DeviceFrames& device) {
    RegisterCache cache(device.frames);
    Capture capture;
    capture.frames = device;
    ErrorReport report;
    ReadRounds(connection, repetition, device, cache, [&](const ModbusReader::Round& round) {
        report.Report(DescribeErrors(round, device));
        Capture::Snapshot snapshot = Capture::Take(cache, device, DateTime::DateTime::GetRealTimeInMilliseconds());
        if (!snapshot.frames.empty()) {
            capture.snapshots.push_back(std::move(snapshot));
        }
    });
    return capture;
}

}  // namespace kzm::ModbusTool
