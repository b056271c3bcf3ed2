#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>

#include "Commands.h"
#include "Files.h"
#include "Options.h"
#include "Recording.h"
#include "RegisterRanges.h"
#include "Text.h"
#include "TextTable.h"
#include "gateway/cache/FrameAddresses.h"
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

// The registers of a capture in hex, by function and address, as in its first snapshot.
class HexRegisters {
public:
    explicit HexRegisters(const Capture& capture) {
        for (const Capture::Frame& frame : capture.snapshots.front().frames) {
            const auto& description = capture.frames.frames[frame.frameIndex];
            const auto addresses = AddressesOf(description);
            for (std::size_t i = 0; i < frame.content.registers.size(); ++i) {
                mWords[{static_cast<int>(description.mFunctionCode), addresses[i]}] = frame.content.registers[i];
            }
        }
    }
    std::string TextOf(int function, std::uint16_t address, std::size_t count) const {
        constexpr std::size_t MOST = 4;
        std::ostringstream text;
        text << std::uppercase << std::hex << std::setfill('0');
        for (std::size_t i = 0; i < std::min(count, MOST); ++i) {
            const auto word = mWords.find({function, address + static_cast<int>(i)});
            text << (i == 0 ? "" : " ");
            text << std::setw(4) << (word == mWords.end() ? 0 : word->second);
        }
        return text.str() + (count > MOST ? " ..." : "");
    }

private:
    std::map<std::pair<int, int>, std::uint16_t> mWords;
};

std::string ValueText(const Guess::Candidate& candidate) {
    if (candidate.isInvalid) {
        return "not available";
    }
    if (candidate.value.is_number_float()) {
        const bool isSingle = candidate.type == "float32";
        return NumberText(candidate.value.get<double>(),
                          isSingle ? NumberPrecision::FLOAT : NumberPrecision::DIGITS_15);
    }
    return candidate.value.is_string() ? Printable(candidate.value.get<std::string>()) : candidate.value.dump();
}

std::string ProbabilityText(double probability) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << probability;
    return text.str();
}

// "uint32 little", "text 8 registers".
std::string TypeText(const Guess::Candidate& candidate, bool isDecided) {
    const bool hasOrder = !candidate.order.empty() && !candidate.type.starts_with("text") &&
                          !candidate.type.starts_with("datetime-fields") &&
                          !candidate.type.starts_with("datetime-bytes");
    if (hasOrder) {
        return candidate.type + ' ' + candidate.order + (isDecided ? "" : "?");
    }
    return candidate.count == 1 ? candidate.type : candidate.type + ' ' + std::to_string(candidate.count);
}

std::string OtherTypes(const Guess::Value& value, std::size_t chosen) {
    constexpr double WORTH_TELLING = 0.05;
    std::string text;
    for (std::size_t i = 0; i < value.candidates.size(); ++i) {
        const Guess::Candidate& other = value.candidates[i];
        if (i != chosen && other.probability >= WORTH_TELLING) {
            text += (text.empty() ? "" : ", ") + TypeText(other, true) + ' ' + ProbabilityText(other.probability);
        }
    }
    return text;
}

void PrintGuess(const Guess& guess, const HexRegisters& registers) {
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
        rows.push_back(TextRow({std::string(NameOf(function)), std::to_string(value.address),
                                registers.TextOf(value.function, value.address, best.count), TypeText(best, isDecided),
                                best.scale == 1 ? "" : NumberText(best.scale, NumberPrecision::DIGITS_15),
                                ValueText(best), ProbabilityText(best.probability), OtherTypes(value, chosen)}));
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
    } else {
        PrintGuess(guess, HexRegisters(capture));
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
    guess.SetExamples({"guess meter.capture.json --expect 6=230.4",
                       "guess --tcp 192.168.1.20 --registers holding:0-119,input:30000-30059"});
}

}  // namespace kzm::ModbusTool
