#include <iostream>

#include "CaptureClock.h"
#include "Commands.h"
#include "Files.h"
#include "ObjectSelection.h"
#include "ObjectTable.h"
#include "Options.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct ShowOptions {
    std::string profile;
    std::string capture;
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
    const bool series = capture.snapshots.size() > 1;
    for (const Capture::Snapshot& snapshot : capture.snapshots) {
        const CaptureClock clock(snapshot.time);
        Capture::Restore(snapshot, *cache);
        const std::vector<ObjectReading> readings = ReadObjects(*profile, selection, cache, options.exact);
        const std::string time = series ? DateTime::DateTime::GetCalendarTime() : "";
        options.json ? PrintJson(readings, time) : PrintTable(readings, time);
    }
    return ExitStatus::OK;
}

}  // namespace

void AddShowCommand(CommandLine& line) {
    const auto options = std::make_shared<ShowOptions>();
    CommandSyntax show = line.AddCommand("show", "Show the objects of a recorded capture, as they were at its time",
                                         [options] { return Show(*options); });
    AddProfileArgument(show, options->profile);
    AddCaptureOption(show, options->capture);
    AddObjectOption(show, options->objects);
    show.AddFlag("--json", "One JSON object per line", options->json);
    AddExactOption(show, options->exact);
    show.SetExamples({"show profiles/energy-meter.jsonc --capture profiles/energy-meter.capture.json"});
}

}  // namespace kzm::ModbusTool
