#include "Commands.h"
#include "Files.h"
#include "ObjectSelection.h"
#include "Options.h"
#include "Replay.h"
#include "ShownObjects.h"
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
    bool raw = false;
};

ExitStatus Show(const ShowOptions& options) {
    const auto profile = LoadProfile(options.profile);
    const Capture capture = LoadCapture(options.capture, *profile);
    const Selection selection = SelectObjects(*profile, options.objects);
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    const std::size_t last = options.at.empty() ? capture.snapshots.size() - 1 : SnapshotAt(capture, options.at);
    Replay(capture, last, *cache, [&](std::size_t position, Milliseconds round) {
        if (!options.at.empty() && position != last) {
            return;
        }
        const std::vector<ObjectReading> readings = ReadObjects(*profile, selection, cache, options.exact);
        const std::string time = capture.snapshots.size() > 1 ? DateTime::DateTime::GetCalendarTime() : "";
        options.json ? PrintJsonLines(readings, time, options.raw) : PrintTable(readings, time, {round, options.raw});
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
    AddRawOption(show, options->raw);
    AddExactOption(show, options->exact);
    show.SetExamples({"show profiles/energy-meter.jsonc --capture profiles/energy-meter.capture.json",
                      "show profiles/energy-meter.jsonc --capture profiles/energy-meter.series.capture.json --at 2"});
}

}  // namespace kzm::ModbusTool
