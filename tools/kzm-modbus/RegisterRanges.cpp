#include "RegisterRanges.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

#include "gateway/json/ProblemText.h"
#include "gateway/modbus/FunctionName.h"
#include "gateway/modbus/RequestLimits.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ModbusFunctionCode;

namespace {

constexpr std::size_t MAX_FRAMES = 255;

// As an option, and as part of a frame's name: without blanks.
std::string OptionOf(ModbusFunctionCode functionCode) {
    std::string name(NameOf(functionCode));
    std::ranges::replace(name, ' ', '-');
    return name;
}

std::vector<std::string> AllFunctions() {
    std::vector<std::string> names;
    for (unsigned code = 1; code <= 4; ++code) {
        names.push_back(OptionOf(static_cast<ModbusFunctionCode>(code)));
    }
    return names;
}

std::optional<std::uint16_t> ParseAddress(std::string_view text) {
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// "holding:0-119" or "holding:7".
RegisterRange ParseRange(std::string_view text) {
    const std::size_t colon = text.find(':');
    const std::string name(text.substr(0, colon));
    const std::string_view numbers = colon == text.npos ? std::string_view() : text.substr(colon + 1);
    const auto first = ParseAddress(numbers.substr(0, numbers.find('-')));
    const auto last = ParseAddress(numbers.substr(numbers.find('-') + 1));
    const auto functions = AllFunctions();
    if (std::ranges::find(functions, name) == functions.end() || !first || !last || *last < *first) {
        throw std::invalid_argument(
            Quoted(text) +
            " is not FUNCTION:FIRST-LAST with addresses from 0 to 65535; FUNCTION: " + ListOf(functions));
    }
    return {FunctionOf(name), *first, *last};
}

std::string TextOf(const RegisterRange& range) {
    return OptionOf(range.functionCode) + ':' + std::to_string(range.first) + '-' + std::to_string(range.last);
}

void RefuseOverlaps(const std::vector<RegisterRange>& ranges) {
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        const auto overlaps = [&](const RegisterRange& other) {
            return other.functionCode == ranges[i].functionCode && other.first <= ranges[i].last &&
                   ranges[i].first <= other.last;
        };
        const auto end = ranges.begin() + static_cast<std::ptrdiff_t>(i);
        if (const auto other = std::find_if(ranges.begin(), end, overlaps); other != end) {
            throw std::invalid_argument(TextOf(*other) + " and " + TextOf(ranges[i]) + " overlap");
        }
    }
}

std::vector<RegisterRange> ParseRanges(std::string_view text) {
    std::vector<RegisterRange> ranges;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        ranges.push_back(ParseRange(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    FramesOf(ranges);  // says what cannot be
    return ranges;
}

}  // namespace

DeviceFrames FramesOf(const std::vector<RegisterRange>& ranges, std::uint16_t most) {
    RefuseOverlaps(ranges);
    DeviceFrames frames;
    for (const RegisterRange& range : ranges) {
        const std::uint32_t longest = std::min(most, MaxReadCount(range.functionCode));
        for (std::uint32_t first = range.first; first <= range.last; first += longest) {
            const auto count = static_cast<std::uint16_t>(std::min<std::uint32_t>(longest, range.last - first + 1U));
            frames.names.push_back(OptionOf(range.functionCode) + '-' + std::to_string(first));
            frames.frames.emplace_back(range.functionCode, false, std::int16_t{0}, count,
                                       static_cast<std::uint16_t>(first));
        }
    }
    if (frames.names.size() > MAX_FRAMES) {
        throw std::invalid_argument(std::to_string(frames.names.size()) + " requests are needed; at most " +
                                    std::to_string(MAX_FRAMES) + " are read in a round");
    }
    return frames;
}

void AddRegistersOption(CommandSyntax& command, std::vector<RegisterRange>& ranges) {
    command.AddParsed({"--registers", "FUNCTION:FIRST-LAST,...",
                       "Registers without a profile, by wire address: holding:0-119,input:30000"},
                      [&](const std::string& text) { ranges = ParseRanges(text); });
}

void AddFunctionOption(CommandSyntax& command, std::string& function) {
    command.AddChoice({"--function", "FUNCTION", "What is read (holding)"}, AllFunctions(), function);
}

ModbusFunctionCode FunctionOf(const std::string& option) {
    std::string name = option.empty() ? "holding" : option;
    std::ranges::replace(name, '-', ' ');
    return *FindReadFunction(name);
}

const char* UnitOf(ModbusFunctionCode functionCode) {
    const bool isOfRegisters = functionCode == ModbusFunctionCode::READ_HOLDING_REGISTERS ||
                               functionCode == ModbusFunctionCode::READ_INPUT_REGISTERS;
    return isOfRegisters ? "register" : "bit";
}

}  // namespace kzm::ModbusTool
