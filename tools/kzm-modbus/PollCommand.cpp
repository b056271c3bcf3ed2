#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>

#include "Commands.h"
#include "DeviceErrors.h"
#include "DeviceRounds.h"
#include "Files.h"
#include "ObjectSelection.h"
#include "ObjectTable.h"
#include "Options.h"
#include "Screen.h"
#include "Text.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct PollOptions {
    std::string profile;
    ModbusSettings connection;
    Repetition repetition{0};
    std::vector<std::string> objects;
    bool json = false;
    bool exact = false;
    bool raw = false;
    bool table = false;
};

// Where the objects of each round go: a table refreshed in place on a terminal, one table after another, or JSON lines.
class PollOutput {
public:
    PollOutput(const PollOptions& options, const LoadedProfile& profile)
        : mTitle(Printable(profile.model->GetModelName() + " at " + ToText(options.connection))),
          mForm{options.repetition.interval, options.raw},
          mTable(!options.json && (options.table || IsTerminal())) {
        if (mTable && IsTerminal()) {
            mScreen.emplace();
        }
    }

    void Show(const std::vector<ObjectReading>& readings, const std::vector<std::string>& errors) {
        const std::string time = DateTime::DateTime::GetCalendarTime();
        MeasureRound(/*complete=*/errors.empty());
        if (mTable) {
            ShowTable(readings, errors, time);
            return;
        }
        mReport.Report(errors);
        for (const ObjectReading& reading : readings) {
            std::cout << ToJsonLine(reading, time, mForm.raw) << '\n';
        }
        std::cout.flush();
    }

private:
    using Clock = std::chrono::steady_clock;

    // A slow device's rounds take longer than the interval; those that wait for one that is silent do not count.
    void MeasureRound(bool complete) {
        const auto now = Clock::now();
        if (complete && mLastRound != Clock::time_point()) {
            mForm.round = std::max(mForm.round, std::chrono::ceil<Milliseconds>(now - mLastRound));
        }
        mLastRound = now;
    }

    void ShowTable(const std::vector<ObjectReading>& readings, std::vector<std::string> errors,
                   const std::string& time) {
        std::vector<std::string> lines = TableOf(readings, mForm);
        lines.insert(lines.begin(), mTitle + ", " + time);
        if (mScreen) {
            std::transform(errors.begin(), errors.end(), errors.begin(), Printable);
            mScreen->Show(std::move(lines), errors);
            return;
        }
        mReport.Report(errors);
        for (const std::string& line : lines) {
            std::cout << line << '\n';
        }
        std::cout << std::endl;
    }

    std::string mTitle;
    TableForm mForm;
    Clock::time_point mLastRound;
    bool mTable;
    std::optional<Screen> mScreen;
    ErrorReport mReport;
};

ExitStatus Poll(const PollOptions& options) {
    const auto profile = LoadProfile(options.profile);
    const Selection selection = SelectObjects(*profile, options.objects);
    const auto cache = std::make_shared<RegisterCache>(profile->model->GetFrames());
    PollOutput output(options, *profile);
    const DeviceFrames device = profile->GetDeviceFrames();
    ReadRounds(options.connection, options.repetition, device, *cache, [&](const ModbusReader::Round& round) {
        output.Show(ReadObjects(*profile, selection, cache, options.exact), DescribeErrors(round, device));
    });
    return ExitStatus::OK;
}

}  // namespace

void AddPollCommand(CommandLine& line) {
    const auto options = std::make_shared<PollOptions>();
    CommandSyntax poll = line.AddCommand("poll", "Show the objects of a live device, again and again",
                                         [options] { return Poll(*options); });
    AddProfileArgument(poll, options->profile);
    AddConnectionOptions(poll, options->connection);
    AddRepetitionOptions(poll, options->repetition);
    AddObjectOption(poll, options->objects);
    poll.AddFlag("--json", "One JSON object per line; the default without a terminal", options->json);
    poll.AddFlag("--table", "A table; the default on a terminal", options->table);
    poll.Exclude({"--table"}, "--json");
    AddRawOption(poll, options->raw);
    AddExactOption(poll, options->exact);
    poll.SetExamples({"poll profiles/energy-meter.jsonc --tcp 192.168.1.20 --unit 1",
                      "poll profiles/energy-meter.jsonc --rtu /dev/ttyUSB0:19200:E --unit 3 --interval 5 --count 12"});
}

}  // namespace kzm::ModbusTool
