#include <algorithm>
#include <charconv>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "Commands.h"
#include "DeviceErrors.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "DeviceRounds.h"
#include "ManualAddress.h"
#include "Options.h"
#include "RegisterImage.h"
#include "RegisterRanges.h"
#include "Screen.h"
#include "Text.h"
#include "gateway/json/ProblemText.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::LogicCodeRows;
using ModbusDeviceModel::DeviceProfile::MAX_ELEMENT_REGISTERS;

namespace {

struct ReadOptions {
    ModbusSettings connection;
    std::string function;
    std::string address;
    std::uint32_t count = 10;
    const LogicCodeRow* type = nullptr;
    std::string order;
    bool exchangeBytes = false;
    bool manual = false;
    double scale = 1;
    double offset = 0;
    bool watch = false;
    Repetition rounds{1};
    bool json = false;
};

[[noreturn]] void Refuse(const std::string& message) {
    throw Failure(ExitStatus::WRONG_USAGE, "read: " + message + " (see kzm-modbus read --help)");
}

const LogicCodeRow* ParseType(const std::string& text) {
    const auto rows = LogicCodeRows();
    const auto row = std::ranges::find(rows, text, &LogicCodeRow::name);
    if (row == rows.end()) {
        Names names;
        std::ranges::transform(rows, std::back_inserter(names),
                               [](const auto& known) { return std::string(known.name); });
        throw std::invalid_argument("there is no type " + Quoted(text) +
                                    Alternatives(text, names, "the types of profiles"));
    }
    return &*row;
}

double ParseDecimal(const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument(Quoted(text) + " is not a number");
    }
    return number;
}

// What `--address`, `--count` and `--function` name together.
RegisterRange RangeOf(const ReadOptions& options) {
    ManualAddress start{FunctionOf(options.function), 0};
    const char* const end = options.address.data() + options.address.size();
    const auto [stop, error] = std::from_chars(options.address.data(), end, start.address);
    if (const auto numbered = options.manual ? ParseManualAddress(options.address) : std::nullopt) {
        if (!options.function.empty() && numbered->functionCode != start.functionCode) {
            Refuse("--address: " + Quoted(options.address) + " is not of the function " + Quoted(options.function));
        }
        start = *numbered;
    } else if (error != std::errc() || stop != end) {
        Refuse("--address: " + Quoted(options.address) + " is not an address from 0 to 65535" +
               (options.manual ? ", nor a number of manuals, such as 40001" : ""));
    }
    if (start.address + options.count > 0x10000) {
        Refuse(Counted(options.count, UnitOf(start.functionCode)) + " from " + std::to_string(start.address) +
               " on end past 65535");
    }
    return {start.functionCode, start.address, static_cast<std::uint16_t>(start.address + options.count - 1)};
}

// What to do about registers that the device refuses.
std::string AdviceFor(const ReadOptions& options) {
    const bool mayBeManual = !options.manual && ParseManualAddress(options.address);
    return (mayBeManual ? "; is " + options.address + " a manual's number? Add --manual" : "") +
           std::string("; kzm-modbus probe tells which registers answer");
}

// nullopt without "--type". A text takes all the registers.
std::optional<Interpretation> TypeOf(const ReadOptions& options) {
    if (options.type == nullptr) {
        return std::nullopt;
    }
    const bool any = options.type->maxRegisters == MAX_ELEMENT_REGISTERS;
    const std::uint32_t count =
        any ? std::min<std::uint32_t>(options.count, MAX_ELEMENT_REGISTERS) : options.type->maxRegisters;
    if (options.count < count) {
        Refuse("--count: a value of the type " + Quoted(options.type->name) + " takes " + std::to_string(count) +
               " registers, not " + std::to_string(options.count));
    }
    const auto order =
        options.order == "little" ? ByteOrderingEnum::LITTLE_ENDIAN_WORDS : ByteOrderingEnum::BIG_ENDIAN_WORDS;
    return Interpretation{options.type->name, static_cast<std::uint8_t>(count), order, options.exchangeBytes};
}

// Where each round goes: to one table that is refreshed on a terminal, otherwise to tables or JSON lines.
class ReadOutput {
public:
    ReadOutput(const ReadOptions& options, const RegisterRange& range, RegisterImage::Look look)
        : mOptions(options), mLook(look), mImage(range.functionCode, range.first, options.count) {
        if (options.watch && !options.json && IsTerminal()) {
            mScreen.emplace("--address and --count choose others");
        }
    }

    void Show(const RegisterCache& cache, const DeviceFrames& device, const std::vector<std::string>& errors) {
        mImage.Take(cache, device);
        const std::string time = DateTime::DateTime::GetCalendarTime();
        if (mScreen) {
            ShowOnScreen(time, errors);
            return;
        }
        mReport.Report(errors);
        if (mOptions.json) {
            PrintJson(time);
        } else {
            PrintTables(time);
        }
        std::cout.flush();
        mIsFirst = false;
    }

private:
    void ShowOnScreen(const std::string& time, std::vector<std::string> errors) {
        std::vector<std::string> lines{Printable(ToText(mOptions.connection)) + ", " + time};
        if (const auto rows = mImage.GetRows(mLook, /*changed=*/false); !rows.empty()) {
            std::ranges::move(LinesOf(rows), std::back_inserter(lines));
        }
        std::ranges::transform(errors, errors.begin(), Printable);
        mScreen->Show(std::move(lines), errors);
    }

    void PrintJson(const std::string& time) const {
        for (nlohmann::json& line : mImage.GetJson(mLook, !mIsFirst)) {
            line["time"] = time;
            std::cout << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
        }
    }

    void PrintTables(const std::string& time) const {
        const auto rows = mImage.GetRows(mLook, !mIsFirst);
        if (rows.empty()) {
            return;
        }
        if (mOptions.watch) {
            std::cout << time << '\n';
        }
        PrintTable(rows);
        if (mLook.type && !mOptions.watch) {
            PrintProfileMembers();
        }
    }

    void PrintProfileMembers() const {
        const std::string members = mLook.type->GetProfileMembers(mLook.scale, mLook.offset);
        std::cout << "In a profile: " << (members.empty() ? "no order exchanges the bytes of such a value" : members)
                  << '\n';
    }

    const ReadOptions& mOptions;
    RegisterImage::Look mLook;
    RegisterImage mImage;
    std::optional<Screen> mScreen;
    ErrorReport mReport;
    bool mIsFirst = true;
};

DeviceFrames DeviceOf(const RegisterRange& range) try {
    return FramesOf({range});
} catch (const std::invalid_argument& error) {
    Refuse(std::string("--count: ") + error.what());
}

ExitStatus Read(ReadOptions& options) {
    const RegisterRange range = RangeOf(options);
    const DeviceFrames device = DeviceOf(range);
    const bool isOfBits = UnitOf(range.functionCode) == std::string("bit");
    if (isOfBits && options.type != nullptr) {
        Refuse("--type: bits have no type");
    }
    RegisterCache cache(device.frames);
    ReadOutput output(
        options, range,
        {options.manual, options.watch, TypeOf(options), options.scale, static_cast<float>(options.offset)});
    options.rounds.count = options.watch ? 0 : 1;
    ReadRounds(options.connection, options.rounds, device, cache, [&](const ModbusReader::Round& round) {
        const std::vector<std::string> errors = DescribeErrors(round, device);
        if (!options.watch && round.framesRead == 0) {
            const bool refused = round.connectionError.empty();
            throw Failure(ExitStatus::NOT_REACHED,
                          ToText(options.connection) + ": " + errors.front() + (refused ? AdviceFor(options) : ""));
        }
        output.Show(cache, device, errors);
    });
    return ExitStatus::OK;
}

void AddTypeOptions(CommandSyntax& read, ReadOptions& options) {
    read.AddParsed({"--type", "TYPE", "The type of the values, as profiles write it: float32"},
                   [&](const std::string& text) { options.type = ParseType(text); });
    read.AddChoice({"--order", "ORDER", "Which register of a value comes first: the most significant (big)"},
                   {"big", "little"}, options.order);
    read.AddFlag("--exchange-bytes", "The two bytes of every register are the other way round", options.exchangeBytes);
    read.AddParsed({"--scale", "NUMBER", "What the values are multiplied by (1)"},
                   [&](const std::string& text) { options.scale = ParseDecimal(text); });
    read.AddParsed({"--offset", "NUMBER", "What is added then (0)"},
                   [&](const std::string& text) { options.offset = ParseDecimal(text); });
}

}  // namespace

void AddReadCommand(CommandLine& line) {
    const auto options = std::make_shared<ReadOptions>();
    CommandSyntax read = line.AddCommand("read", "Show registers of a live device without a profile",
                                         [options] { return Read(*options); });
    AddConnectionOptions(read, options->connection);
    AddFunctionOption(read, options->function);
    read.AddText({"--address", "N", "The first register, by its address on the wire"}, options->address);
    read.Require("--address");
    read.AddNumber({"--count", "N", "How many registers (10)"}, 1, 0x10000,
                   [options](std::uint32_t count) { options->count = count; });
    read.AddFlag("--manual", "Addresses are numbers of manuals: 40001 is the first holding register", options->manual);
    AddTypeOptions(read, *options);
    read.AddFlag("--watch", "Read again and again, and show what changes", options->watch);
    read.AddSeconds({"--interval", "SECONDS", "From the start of one round to that of the next"},
                    options->rounds.interval);
    read.AddFlag("--json", "One JSON object per line", options->json);
    read.SetExamples({"read --tcp 192.168.1.20 --function input --address 0 --count 20",
                      "read --rtu /dev/ttyUSB0:19200:E --unit 3 --manual --address 40071 --type uint32 --count 2"
                      " --order little --scale 0.1"});
}

}  // namespace kzm::ModbusTool
