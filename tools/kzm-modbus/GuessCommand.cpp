#include <iostream>

#include "Commands.h"
#include "Files.h"
#include "GuessText.h"
#include "Options.h"
#include "Recording.h"
#include "RegisterRanges.h"
#include "TextTable.h"
#include "gateway/diagnosis/Guess.h"
#include "gateway/json/NumberText.h"
#include "gateway/modbus/FunctionName.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct GuessOptions {
    std::string capture;
    std::vector<RegisterRange> registers;
    ModbusSettings connection;
    Repetition repetition{5};
    std::vector<std::string> expected;
    bool json = false;
    bool profile = false;
};

constexpr double DOUBTFUL = 0.5;  // a probability below which a guess is faint

Capture CaptureOf(const GuessOptions& options) {
    if (!options.capture.empty()) {
        return LoadCapture(options.capture);
    }
    if (options.registers.empty()) {
        throw Failure(ExitStatus::WRONG_USAGE, "guess: a device needs --registers, e.g. holding:0-119");
    }
    Capture capture = Record(options.connection, options.repetition, FramesOf(options.registers));
    if (capture.snapshots.empty()) {
        throw Failure(ExitStatus::NOT_REACHED, "interrupted before a frame was read");
    }
    return capture;
}

Guess GuessOf(const Capture& capture, const std::vector<std::string>& expected) try {
    Expectations expectations;
    for (const std::string& text : expected) {
        expectations.push_back(Expectation::Parse(text));
    }
    return Guess::Of(capture, expectations);
} catch (const std::invalid_argument& error) {
    throw Failure(ExitStatus::WRONG_USAGE, std::string("--expect: ") + error.what());
}

void PrintGuess(const Guess& guess, const FirstRegisters& registers) {
    const bool isDecided = !guess.order.empty();
    std::cout << "word order: " << (isDecided ? guess.order : "undecided") << '\n';
    for (const std::string& evidence : guess.evidence) {
        std::cout << "  " << evidence << '\n';
    }
    std::vector<Row> rows{
        HeadingRow({"function", "address", "registers", "type", "scale", "value", "probability", "or"})};
    for (const auto& [position, chosen] : guess.division) {
        const Guess::Value& value = guess.values[position];
        const Guess::Candidate& best = value.candidates[chosen];
        const auto function = static_cast<ModbusDeviceModel::ModbusFunctionCode>(value.function);
        rows.push_back(
            TextRow({std::string(NameOf(function)), std::to_string(value.address),
                     FirstOf(registers.Of(value.function, value.address, best.count)), TypeText(best, isDecided),
                     best.scale == 1 ? "" : NumberText(best.scale, NumberPrecision::DIGITS_15), ValueText(best),
                     ProbabilityText(best.probability), OtherTypes(value, chosen)}));
        for (Cell& cell : rows.back()) {
            cell.style = best.probability < DOUBTFUL ? Style::FAINT : Style::PLAIN;
        }
    }
    std::cout << '\n';
    PrintTable(rows);
}

ExitStatus Run(const GuessOptions& options) {
    const Capture capture = CaptureOf(options);
    const Guess guess = GuessOf(capture, options.expected);
    if (options.json) {
        std::cout << guess.ToJson().dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    } else if (options.profile) {
        PrintProfile(capture, guess);
    } else {
        PrintGuess(guess, FirstRegisters(capture));
    }
    return ExitStatus::OK;
}

}  // namespace

void AddGuessCommand(CommandLine& line) {
    const auto options = std::make_shared<GuessOptions>();
    CommandSyntax guess =
        line.AddCommand("guess", "Guess types, word order and scales of a device without documentation",
                        [options] { return Run(*options); });
    AddCaptureOrDevice(guess, options->capture, options->connection);
    AddRegistersOption(guess, options->registers);
    AddRepetitionOptions(guess, options->repetition);
    guess.Exclude({"--registers", "--count", "--interval"}, "CAPTURE");
    guess.AddTexts(
        {"--expect", "ADDRESS=VALUE", "What the device's display shows of a register; may be given more than once"},
        options->expected);
    guess.AddFlag("--json", "One JSON object with every candidate", options->json);
    guess.AddFlag("--profile", "A device profile to be completed, with the evidence as comments", options->profile);
    guess.Exclude({"--profile"}, "--json");
    guess.SetExamples({"guess meter.capture.json --expect 6=230.4", "guess meter.capture.json --profile > meter.jsonc",
                       "guess --tcp 192.168.1.20 --registers holding:0-119,input:30000-30059"});
}

}  // namespace kzm::ModbusTool
