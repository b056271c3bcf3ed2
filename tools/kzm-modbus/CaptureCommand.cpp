#include <iostream>

#include "Commands.h"
#include "Files.h"
#include "Options.h"
#include "Recording.h"
#include "RegisterRanges.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct CaptureOptions {
    std::string profile;
    std::vector<RegisterRange> registers;
    ModbusSettings connection;
    Repetition repetition{1};
    std::string output;
};

DeviceFrames DeviceOf(const CaptureOptions& options) {
    if (options.profile.empty() == options.registers.empty()) {
        throw Failure(ExitStatus::WRONG_USAGE,
                      "capture: exactly one of PROFILE, --registers is required (see kzm-modbus capture --help)");
    }
    return options.registers.empty() ? LoadProfile(options.profile)->GetDeviceFrames() : FramesOf(options.registers);
}

ExitStatus WriteCapture(const CaptureOptions& options) {
    const DeviceFrames device = DeviceOf(options);
    OutputFile file(options.output, {options.profile});
    const Capture capture = Record(options.connection, options.repetition, device);
    if (capture.snapshots.empty()) {
        throw Failure(ExitStatus::NOT_REACHED,
                      "interrupted before a frame was read; " + options.output + " is not written");
    }
    file.Commit(capture.Write(device));
    std::cout << options.output << ": " << Counted(capture.snapshots.size(), "snapshot") << ", "
              << capture.snapshots.back().frames.size() << " of " << Counted(device.names.size(), "frame") << '\n';
    return ExitStatus::OK;
}

}  // namespace

void AddCaptureCommand(CommandLine& line) {
    const auto options = std::make_shared<CaptureOptions>();
    CommandSyntax capture = line.AddCommand("capture", "Record the frames of a live device, for replay and bug reports",
                                            [options] { return WriteCapture(*options); });
    AddOptionalProfileArgument(capture, options->profile);
    AddRegistersOption(capture, options->registers);
    AddConnectionOptions(capture, options->connection);
    AddRepetitionOptions(capture, options->repetition);
    capture.AddText({"-o,--output", "FILE", "The capture to write; it appears whole at the end"}, options->output);
    capture.Require("--output");
    capture.SetExamples(
        {"capture profiles/energy-meter.jsonc --tcp 192.168.1.20 --unit 1 --count 10 -o meter.capture.json",
         "capture --registers holding:0-119,input:30000-30059 --tcp 192.168.1.20 -o registers.capture.json"});
}

}  // namespace kzm::ModbusTool
