#include <iostream>

#include "Commands.h"
#include "DeviceErrors.h"
#include "DeviceRounds.h"
#include "Files.h"
#include "Options.h"
#include "Text.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct CaptureOptions {
    std::string profile;
    ModbusSettings connection;
    Repetition repetition{1};
    std::string output;
};

ExitStatus Record(const CaptureOptions& options) {
    const auto profile = LoadProfile(options.profile);
    OutputFile file(options.output, {options.profile});
    RegisterCache cache(profile->model->GetFrames());
    Capture capture;
    ErrorReport report;
    const auto takeSnapshot = [&](const ModbusReader::Round& round) {
        report.Report(DescribeErrors(round, *profile));
        Capture::Snapshot snapshot =
            Capture::Take(cache, profile->GetDeviceFrames(), DateTime::DateTime::GetRealTimeInMilliseconds());
        if (!snapshot.frames.empty()) {
            capture.snapshots.push_back(std::move(snapshot));
        }
    };
    ReadRounds(options.connection, options.repetition, *profile, cache, takeSnapshot);
    if (capture.snapshots.empty()) {
        throw Failure(ExitStatus::NOT_REACHED,
                      "interrupted before a frame was read; " + options.output + " is not written");
    }
    file.Commit(capture.Write(profile->GetDeviceFrames()));
    std::cout << options.output << ": " << Counted(capture.snapshots.size(), "snapshot") << ", "
              << capture.snapshots.back().frames.size() << " of " << Counted(profile->frameNames.size(), "frame")
              << '\n';
    return ExitStatus::OK;
}

}  // namespace

void AddCaptureCommand(CommandLine& line) {
    const auto options = std::make_shared<CaptureOptions>();
    CommandSyntax capture = line.AddCommand("capture", "Record the frames of a live device, for replay and bug reports",
                                            [options] { return Record(*options); });
    AddProfileArgument(capture, options->profile);
    AddConnectionOptions(capture, options->connection);
    AddRepetitionOptions(capture, options->repetition);
    capture.AddText({"-o,--output", "FILE", "The capture to write; it appears whole at the end"}, options->output);
    capture.Require("--output");
    capture.SetExamples(
        {"capture profiles/energy-meter.jsonc --tcp 192.168.1.20 --unit 1 --count 10 -o meter.capture.json"});
}

}  // namespace kzm::ModbusTool
