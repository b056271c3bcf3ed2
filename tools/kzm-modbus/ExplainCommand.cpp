#include <algorithm>

#include "BadObjects.h"
#include "Commands.h"
#include "ExplanationOutput.h"
#include "Files.h"
#include "Options.h"
#include "Replay.h"
#include "Source.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::ComputedAlarmPreviousMeasurement;

namespace {

struct ExplainOptions {
    std::string profile;
    std::string object;
    Source source;
    bool bad = false;
    bool all = false;
    bool json = false;
};

void PrintObjects(const ExplainOptions& options, const LoadedProfile& profile, const Selection& objects,
                  const Cache& cache, const Moment& moment) {
    const std::vector<ObjectReading> readings = ReadObjects(profile, objects, cache, /*exact=*/false);
    if (options.bad) {
        PrintBadObjects(readings, options.profile, options.json);
        return;
    }
    if (!options.json && !readings.empty()) {
        PrintExplanations(readings, moment, *cache, {options.profile, options.all});
    }
    for (const ObjectReading& reading : options.json ? readings : std::vector<ObjectReading>{}) {
        PrintExplanationJson(reading, moment, *cache, {options.profile, options.all});
    }
}

// A change shows in the second round.
std::uint64_t RoundsFor(const Targets& targets) {
    const auto& alarms = targets.alarms;
    return std::any_of(alarms.begin(), alarms.end(),
                       [](const auto* alarm) { return alarm->element->IsHasChangedAlarm(); })
               ? 2
               : 1;
}

ExitStatus Run(const ExplainOptions& options) {
    if (options.bad == !options.object.empty()) {
        throw Failure(ExitStatus::WRONG_USAGE,
                      "explain: either OBJECT or --bad is required (see kzm-modbus explain --help)");
    }
    if (!options.source.at.empty() && options.source.capture.empty()) {
        throw Failure(ExitStatus::WRONG_USAGE, "explain: --at needs --capture (see kzm-modbus explain --help)");
    }
    const auto profile = LoadProfile(options.profile);
    const Targets targets =
        options.bad ? Targets{SelectObjects(*profile, {}), {}} : SelectTargets(*profile, options.object);
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    const auto previous = std::make_shared<std::map<std::string, ComputedAlarmPreviousMeasurement>>();
    Follow(options.source, RoundsFor(targets), *profile, cache, [&](const Moment& moment) {
        if (moment.isLast) {
            PrintObjects(options, *profile, targets.objects, cache, moment);
        }
        for (const LoadedProfile::Alarm* alarm : targets.alarms) {
            const AlarmReading reading = ReadAlarm(*profile, *alarm, cache, previous);
            if (moment.isLast) {
                const TreeForm form{options.profile, options.all};
                options.json ? PrintExplanationJson(reading, moment, *cache, form)
                             : PrintExplanation(reading, moment, *cache, form);
            }
        }
    });
    return ExitStatus::OK;
}

}  // namespace

void AddExplainCommand(CommandLine& line) {
    const auto options = std::make_shared<ExplainOptions>();
    CommandSyntax explain =
        line.AddCommand("explain", "Tell how an object or an alarm comes about, and why it is not Good",
                        [options] { return Run(*options); });
    AddProfileArgument(explain, options->profile);
    explain.AddOptionalArgument("OBJECT", "Its name, NAME/ALIAS or key", options->object);
    AddAnySourceOptions(explain, options->source.capture, options->source.device);
    AddAtOption(explain, "the last", options->source.at);
    explain.AddFlag("--bad", "Instead of OBJECT: every object that is not Good, by cause", options->bad);
    explain.AddFlag("--all", "A line for each step, also for those that change nothing", options->all);
    explain.AddFlag("--json", "One JSON object per line", options->json);
    explain.SetExamples({"explain profiles/energy-meter.jsonc IG_KELO --capture profiles/energy-meter.capture.json",
                         "explain profiles/energy-meter.jsonc \"Tariff changed\" --capture "
                         "profiles/energy-meter.series.capture.json --at 6",
                         "explain profiles/energy-meter.jsonc --bad --tcp 192.168.1.20 --unit 1"});
}

}  // namespace kzm::ModbusTool
