#include <unistd.h>

#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

#include "Commands.h"
#include "DeviceErrors.h"
#include "Files.h"
#include "Options.h"
#include "ProbeResult.h"
#include "RegisterRanges.h"
#include "StopSignal.h"
#include "Text.h"
#include "gateway/modbus/FunctionName.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using Outcome = ModbusConnection::Outcome;

namespace {

struct ProbeOptions {
    ModbusSettings connection;
    std::string function;
    std::uint32_t from = 0;
    std::uint32_t to = 9999;
    Milliseconds pause{0};
    bool thorough = false;
    std::string known;   // the capture to continue
    std::string output;  // may be empty
};

// One line on standard error, if that is a terminal, that is written over and disappears at the end.
class Progress {
public:
    Progress(const ProbeOptions& options) : mTotal(options.to - options.from + 1) {}
    ~Progress() {
        if (mShown) {
            std::cerr << "\r\x1b[K" << std::flush;
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(const RegisterProbe& probe) {
        const auto now = Clock::now();
        if (!mTerminal || now < mNext) {
            return;
        }
        mNext = now + Milliseconds(200);
        mShown = true;
        const std::size_t settled = probe.GetSettledCount();
        if (mSettledBefore == 0) {
            mSettledBefore = settled + 1;  // of a probe that is continued
        }
        std::cerr << '\r' << settled << " of " << Counted(mTotal, "register") << ", "
                  << Counted(probe.GetRequestCount(), "request");
        if (settled > mSettledBefore) {
            const auto left = (now - mStart) * (mTotal - settled) / (settled - mSettledBefore);
            std::cerr << ", about " << std::chrono::ceil<std::chrono::seconds>(left).count() << " s left";
        }
        std::cerr << "\x1b[K" << std::flush;
    }

private:
    using Clock = std::chrono::steady_clock;

    bool mTerminal = isatty(STDERR_FILENO) == 1;
    bool mShown = false;
    std::size_t mTotal;
    std::size_t mSettledBefore = 0;
    Clock::time_point mStart = Clock::now();
    Clock::time_point mNext = mStart;
};

// A device that is asked with a pause between requests, and again while it is busy or away for a moment.
class PatientDevice {
public:
    PatientDevice(const ProbeOptions& options, const StopSignal& stop) try
        : mConnection(options.connection, &stop.GetFlag()),
          mFunctionCode(FunctionOf(options.function)),
          mPause(options.pause),
          mStop(stop) {
    } catch (const std::invalid_argument&) {
        throw ImpossibleSettings(options.connection);
    }

    ModbusConnection::Result Read(std::uint16_t first, std::uint16_t count, std::uint16_t* values) {
        constexpr int MOST_ATTEMPTS = 5;
        Milliseconds pause = mPause;
        for (int attempt = 1;; ++attempt) {
            mStop.WaitUntil(std::chrono::steady_clock::now() + (mHasAnswered ? pause : Milliseconds(0)));
            const ModbusConnection::Result result = mConnection.Read(mFunctionCode, first, count, values);
            const bool away = mHasAnswered && result.outcome == Outcome::UNREACHABLE;
            mHasAnswered = mHasAnswered || result.outcome != Outcome::UNREACHABLE;
            if ((!away && result.exception != BUSY) || attempt == MOST_ATTEMPTS || mStop.GetFlag()) {
                return result;
            }
            pause = std::max(mPause, Milliseconds(1000));
        }
    }

private:
    static constexpr int BUSY = 6;

    ModbusConnection mConnection;
    ModbusDeviceModel::ModbusFunctionCode mFunctionCode;
    Milliseconds mPause;
    const StopSignal& mStop;
    bool mHasAnswered = false;
};

[[noreturn]] void Refuse(const std::string& message) {
    throw Failure(ExitStatus::WRONG_USAGE, "probe: " + message + " (see kzm-modbus probe --help)");
}

void PrintSize(const RegisterProbe& probe, const std::string& unit) {
    if (probe.GetLargestRequest() != 0) {
        std::cout << "Largest request that was answered: " << Counted(probe.GetLargestRequest(), unit);
        if (probe.GetRefusedSize() != 0) {
            std::cout << "; the device refuses " << probe.GetRefusedSize();
        }
        std::cout << ". ";
    }
    std::cout << Counted(probe.GetRequestCount(), "request") << " sent.\n";
}

void PrintFrames(const DeviceFrames& device) {
    std::cout << "\"frames\": [\n";
    for (std::size_t i = 0; i < device.names.size(); ++i) {
        const auto& frame = device.frames[i];
        const nlohmann::ordered_json text{{"name", device.names[i]},
                                          {"function", NameOf(frame.mFunctionCode)},
                                          {"address", frame.mAddress.mAddress},
                                          {"count", frame.mLength}};
        std::cout << "    " << text.dump() << (i + 1 < device.names.size() ? ",\n" : "\n");
    }
    std::cout << "]\n";
}

// What was found, on standard output and in the file.
void Report(const ProbeResult& result, const RegisterProbe& probe, const std::string& unit, OutputFile* file,
            const std::string& output) {
    result.Print();
    PrintSize(probe, unit);
    if (const std::size_t count = result.CountNotAsked(); count != 0) {
        std::cout << Counted(count, unit) << " in holes not asked one by one; --thorough asks for each.\n";
    }
    if (!result.HasRegisters()) {
        std::cout << "No " << unit << " answers" << (file ? "; " + output + " is not written" : "") << ".\n";
        return;
    }
    try {
        const DeviceFrames device =
            result.GetFrames(probe.GetRefusedSize() == 0 ? result.GetMost() : probe.GetLargestRequest());
        PrintFrames(device);
        if (file) {
            file->Commit(result.MakeCapture(device).Write(device));
        }
    } catch (const std::invalid_argument& error) {
        throw Failure(ExitStatus::WRONG_USAGE, std::string("the registers do not fit into one capture: ") +
                                                   error.what() + "; probe parts with --from and --to");
    }
}

void ExplainEnd(const ModbusConnection::Result& end, const RegisterProbe& probe, const ProbeOptions& options) {
    const std::string device = ToText(options.connection) + ": ";
    switch (end.outcome) {
        case Outcome::STOPPED:
            std::cerr << "kzm-modbus: interrupted; " << probe.GetSettledCount() << " of " << probe.GetRegisters().size()
                      << " are known" << (options.output.empty() ? "" : "; --continue " + options.output + " goes on")
                      << '\n';
            return;
        case Outcome::EXCEPTION:
            throw Failure(ExitStatus::NOT_REACHED, device + "does not read this function: " + end.reason);
        case Outcome::NO_ANSWER:
            throw Failure(ExitStatus::NOT_REACHED, device + "no answer to " + std::to_string(probe.GetRequestCount()) +
                                                       " requests: " + end.reason);
        case Outcome::LOST:
        case Outcome::UNREACHABLE:
            throw Failure(ExitStatus::NOT_REACHED, device + end.reason);
        case Outcome::ANSWERED:
            break;
    }
}

ExitStatus Probe(const ProbeOptions& options) {
    if (options.from > options.to) {
        Refuse("--from " + std::to_string(options.from) + " is after --to " + std::to_string(options.to));
    }
    const auto functionCode = FunctionOf(options.function);
    ProbeResult result(functionCode);
    if (!options.known.empty()) {
        result.Take(LoadCapture(options.known));
    }
    std::optional<OutputFile> file;
    if (!options.output.empty()) {
        file.emplace(options.output, std::vector<std::string>{});
    }
    const StopSignal stop;
    PatientDevice device(options, stop);
    const auto first = static_cast<std::uint16_t>(options.from);
    ModbusConnection::Result end{};
    std::optional<Progress> progress(std::in_place, options);
    std::unique_ptr<RegisterProbe> probe;
    probe = std::make_unique<RegisterProbe>(first, static_cast<std::uint16_t>(options.to), result.GetMost(),
                                            [&](std::uint16_t address, std::uint16_t count, std::uint16_t* values) {
                                                progress->Show(*probe);
                                                return device.Read(address, count, values);
                                            });
    result.TellTo(*probe);
    end = probe->Run(options.thorough);
    progress.reset();
    if (stop.GetFlag()) {
        end = {Outcome::STOPPED, {}};
    }
    result.Take(*probe, first);
    if (result.HasRegisters() || end.outcome == Outcome::ANSWERED) {
        Report(result, *probe, UnitOf(functionCode), file ? &*file : nullptr, options.output);
    }
    ExplainEnd(end, *probe, options);
    return ExitStatus::OK;
}

}  // namespace

void AddProbeCommand(CommandLine& line) {
    const auto options = std::make_shared<ProbeOptions>();
    CommandSyntax probe = line.AddCommand("probe", "Find out which registers of a live device answer, by reading only",
                                          [options] { return Probe(*options); });
    AddConnectionOptions(probe, options->connection);
    AddFunctionOption(probe, options->function);
    probe.AddNumber({"--from", "N", "The first register, by its address on the wire (0)"}, 0, 0xFFFF,
                    [options](std::uint32_t from) { options->from = from; });
    probe.AddNumber({"--to", "N", "The last one (9999)"}, 0, 0xFFFF, [options](std::uint32_t to) { options->to = to; });
    probe.AddSeconds({"--pause", "SECONDS", "How long to wait between two requests"}, options->pause);
    probe.AddFlag("--thorough", "Ask for each register of a hole by itself", options->thorough);
    probe.AddText({"--continue", "FILE", "Go on with what an earlier probe wrote; what that knows is not asked again"},
                  options->known);
    probe.AddText({"-o,--output", "FILE", "The capture of all that was read, to write"}, options->output);
    probe.SetExamples({"probe --tcp 192.168.1.20 --function holding --from 0 --to 9999 -o found.capture.json",
                       "probe --rtu /dev/ttyUSB0:19200:E --unit 3 --function input --pause 0.05"
                       " --continue found.capture.json -o found.capture.json"});
}

}  // namespace kzm::ModbusTool
