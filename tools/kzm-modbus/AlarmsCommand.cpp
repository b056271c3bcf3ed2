#include <iostream>
#include <optional>

#include "AlarmTable.h"
#include "Commands.h"
#include "DeviceErrors.h"
#include "DeviceRounds.h"
#include "Files.h"
#include "Options.h"
#include "Replay.h"
#include "TextTable.h"
#include "kzm/DateTime/DateTime.h"

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
    bool raw = false;
};

// Evaluates the alarms again and again; prints all of the first evaluation, and of later ones what is new.
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
    void PrintJson(const std::vector<const AlarmReading*>& readings, const std::string& time) const {
        for (const AlarmReading* reading : readings) {
            std::cout << ToJsonLine(*reading, time, mOptions.raw) << '\n';
        }
    }

    void PrintLines(const std::vector<const AlarmReading*>& readings, const std::string& time) {
        std::vector<Row> rows;
        for (const AlarmReading* reading : readings) {
            rows.push_back(RowOf(*reading, time, mOptions.raw));
        }
        if (!mLayout) {
            PrintHeadings(rows);
        }
        for (const Row& row : rows) {
            std::cout << mLayout->LineOf(row) << '\n';
        }
    }

    // The first evaluation has every alarm, so its columns are wide enough for the later ones.
    void PrintHeadings(std::vector<Row> rows) {
        const Row headings = AlarmHeadings(mOptions.raw);
        rows.insert(rows.begin(), headings);
        rows.push_back(TextRow({"", "", "", "Inactive", "Questionable"}));
        mLayout.emplace(rows);
        std::cout << mLayout->LineOf(headings) << '\n';
    }

    const AlarmsOptions& mOptions;
    const LoadedProfile& mProfile;
    Cache mCache;
    ModbusDeviceModel::DataModel::PreviousMeasurements mPrevious =
        std::make_shared<std::map<std::string, ComputedAlarmPreviousMeasurement>>();
    std::vector<AlarmReading> mLast;
    std::optional<TableLayout> mLayout;
};

ExitStatus WatchAlarms(const AlarmsOptions& options) {
    const auto profile = LoadProfile(options.profile);
    if (profile->alarms.empty()) {
        throw Failure(ExitStatus::NOT_FOUND, options.profile + " has no alarms");
    }
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    AlarmWatch watch(options, *profile, cache);
    if (options.capture.empty()) {
        ErrorReport report;
        const DeviceFrames device = profile->GetDeviceFrames();
        ReadRounds(options.connection, options.repetition, device, *cache, [&](const ModbusReader::Round& round) {
            report.Report(DescribeErrors(round, device));
            watch.Evaluate();
        });
        return ExitStatus::OK;
    }
    const Capture capture = LoadCapture(options.capture, *profile);
    Replay(capture, capture.snapshots.size() - 1, *cache, [&](std::size_t, Milliseconds) { watch.Evaluate(); });
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
    alarms.AddFlag("--all", "Show every evaluation of every alarm, not only the changes", options->all);
    alarms.AddFlag("--json", "One JSON object per line", options->json);
    AddRawOption(alarms, options->raw);
    alarms.SetExamples({"alarms profiles/energy-meter.jsonc --capture profiles/energy-meter.series.capture.json",
                        "alarms profiles/energy-meter.jsonc --tcp 192.168.1.20 --unit 1 --interval 5 --json"});
}

}  // namespace kzm::ModbusTool
