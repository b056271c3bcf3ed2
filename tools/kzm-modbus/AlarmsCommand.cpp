#include <iostream>
#include <optional>

#include "AlarmReading.h"
#include "Columns.h"
#include "Commands.h"
#include "DeviceRounds.h"
#include "Files.h"
#include "Options.h"
#include "Text.h"
#include "kzm/DateTime/DateTime.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::ComputedAlarmPreviousMeasurement;

namespace {

struct AlarmsOptions {
    std::string profile;
    std::string capture;
    ModbusSettings connection;
    Repetition repetition{0};
    bool all = false;
    bool json = false;
};

Columns::Row RowOf(const AlarmReading& reading, const std::string& time) {
    const std::string state = reading.TextOf("state", "value");
    Columns::Row row{time,
                     reading.alarm->element->GetName(),
                     reading.alarm->alias,
                     state.empty() ? "unknown" : state,
                     reading.TextOf("state", "quality"),
                     reading.TextOf("criticality", "value"),
                     reading.momentary ? "momentary" : "lasting",
                     reading.TextOf("type", "value"),
                     reading.alarm->element->GetDescription(),
                     reading.why};
    for (std::string& text : row) {
        text = Printable(text);
    }
    return row;
}

// Evaluates the alarms again and again and tells of the first evaluation all, of the later ones what is new.
class AlarmWatch {
public:
    AlarmWatch(const AlarmsOptions& options, const LoadedProfile& profile, Cache cache)
        : mOptions(options), mProfile(profile), mCache(std::move(cache)) {}

    void Evaluate() {
        const std::string time = DateTime::DateTime::GetCalendarTime();
        std::vector<AlarmReading> readings;
        std::vector<const AlarmReading*> news;
        for (const LoadedProfile::Alarm& alarm : mProfile.alarms) {
            readings.push_back(ReadAlarm(mProfile, alarm, mCache, mPrevious));
        }
        for (std::size_t i = 0; i < readings.size(); ++i) {
            if (mOptions.all || mLast.empty() || readings[i].DiffersFrom(mLast[i])) {
                news.push_back(&readings[i]);
            }
        }
        mOptions.json ? PrintJson(news, time) : PrintLines(news, time);
        std::cout.flush();
        mLast = std::move(readings);
    }

private:
    static void PrintJson(const std::vector<const AlarmReading*>& readings, const std::string& time) {
        for (const AlarmReading* reading : readings) {
            std::cout << ToJsonLine(*reading, time) << '\n';
        }
    }

    void PrintLines(const std::vector<const AlarmReading*>& readings, const std::string& time) {
        std::vector<Columns::Row> rows;
        for (const AlarmReading* reading : readings) {
            rows.push_back(RowOf(*reading, time));
        }
        if (!mColumns) {
            PrintHeadings(rows);
        }
        for (const Columns::Row& row : rows) {
            std::cout << mColumns->LineOf(row) << '\n';
        }
    }

    // The first evaluation has every alarm, so that the columns suit the later ones too.
    void PrintHeadings(std::vector<Columns::Row> rows) {
        const Columns::Row headings{"TIME",        "ALARM", "ALIAS", "STATE",       "QUALITY",
                                    "CRITICALITY", "KIND",  "TYPE",  "DESCRIPTION", "WHY UNKNOWN"};
        rows.push_back(headings);
        rows.push_back({"", "", "", "Inactive", "Questionable"});
        mColumns.emplace(rows);
        PrintHeading(*mColumns, headings);
    }

    const AlarmsOptions& mOptions;
    const LoadedProfile& mProfile;
    Cache mCache;
    ModbusDeviceModel::DataModel::PreviousMeasurements mPrevious =
        std::make_shared<std::map<std::string, ComputedAlarmPreviousMeasurement>>();
    std::vector<AlarmReading> mLast;
    std::optional<Columns> mColumns;
};

ExitStatus WatchAlarms(const AlarmsOptions& options) {
    const auto profile = LoadProfile(options.profile);
    if (profile->alarms.empty()) {
        throw Failure(ExitStatus::OBJECT_NOT_FOUND, options.profile + " has no alarms");
    }
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    AlarmWatch watch(options, *profile, cache);
    if (options.capture.empty()) {
        ErrorReport report;
        return ReadRounds(options.connection, options.repetition, *profile, *cache,
                          [&](const ModbusReader::Round& round) {
                              report.Report(DescribeErrors(round, *profile));
                              watch.Evaluate();
                          });
    }
    const Capture capture = LoadCapture(options.capture, *profile);
    for (const Capture::Snapshot& snapshot : capture.snapshots) {
        const StandIn::StoppedClock clock(snapshot.time);
        Capture::Restore(snapshot, *cache);
        watch.Evaluate();
    }
    return ExitStatus::OK;
}

}  // namespace

void AddAlarmsCommand(CommandLine& line) {
    const auto options = std::make_shared<AlarmsOptions>();
    CommandSyntax alarms = line.AddCommand("alarms", "Evaluate the computed alarms of a capture or of a live device",
                                           [options] { return WatchAlarms(*options); });
    AddProfileArgument(alarms, options->profile);
    AddSourceOptions(alarms, options->capture, options->connection);
    AddRepetitionOptions(alarms, options->repetition);
    alarms.Exclude({"--count", "--interval"}, "--capture");
    alarms.AddFlag("--all", "Show every evaluation, not only what changes after the first", options->all);
    alarms.AddFlag("--json", "One JSON object a line", options->json);
    alarms.SetExamples({"alarms profiles/energy-meter.jsonc --capture profiles/energy-meter.series.capture.json",
                        "alarms profiles/energy-meter.jsonc --tcp 192.168.1.20 --unit 1 --interval 5 --json"});
}

}  // namespace kzm::ModbusTool
