#include <iostream>

#include "Commands.h"
#include "Files.h"
#include "ObjectSelection.h"
#include "ObjectTable.h"
#include "Options.h"
#include "Replay.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct ShowOptions {
    std::string profile;
    std::string capture;
    std::string at;  // empty: every snapshot
    std::vector<std::string> objects;
    bool json = false;
    bool exact = false;
};

void PrintJson(const std::vector<ObjectReading>& readings, const std::string& time) {
    for (const ObjectReading& reading : readings) {
        std::cout << ToJsonLine(reading, time) << '\n';
    }
}

void PrintTable(const std::vector<ObjectReading>& readings, const std::string& time) {
    if (!time.empty()) {
        std::cout << time << '\n';
    }
    for (const std::string& line : TableOf(readings)) {
        std::cout << line << '\n';
    }
    std::cout << (time.empty() ? "" : "\n");
}

ExitStatus Show(const ShowOptions& options) {
    const auto profile = LoadProfile(options.profile);
    const Capture capture = LoadCapture(options.capture, *profile);
    const Selection selection = SelectObjects(*profile, options.objects);
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    const std::size_t last = options.at.empty() ? capture.snapshots.size() - 1 : SnapshotAt(capture, options.at);
    Replay(capture, last, *cache, [&](std::size_t position, Milliseconds) {
        if (!options.at.empty() && position != last) {
            return;
        }
        const std::vector<ObjectReading> readings = ReadObjects(*profile, selection, cache, options.exact);
        const std::string time = capture.snapshots.size() > 1 ? DateTime::DateTime::GetCalendarTime() : "";
        options.json ? PrintJson(readings, time) : PrintTable(readings, time);
    });
    return ExitStatus::OK;
}

}  // namespace

void AddShowCommand(CommandLine& line) {
    const auto options = std::make_shared<ShowOptions>();
    CommandSyntax show = line.AddCommand("show", "Show the objects of a recorded capture, as they were at its time",
                                         [options] { return Show(*options); });
    AddProfileArgument(show, options->profile);
    AddCaptureOption(show, options->capture);
    AddAtOption(show, "all", options->at);
    AddObjectOption(show, options->objects);
    show.AddFlag("--json", "One JSON object per line", options->json);
    AddExactOption(show, options->exact);
    show.SetExamples({"show profiles/energy-meter.jsonc --capture profiles/energy-meter.capture.json",
                      "show profiles/energy-meter.jsonc --capture profiles/energy-meter.series.capture.json --at 2"});
}

}  // namespace kzm::ModbusTool
