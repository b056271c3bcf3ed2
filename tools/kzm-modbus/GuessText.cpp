#include "GuessText.h"

#include <iomanip>
#include <sstream>

#include "Text.h"
#include "gateway/cache/FrameAddresses.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

FirstRegisters::FirstRegisters(const Capture& capture) {
    for (const Capture::Frame& frame : capture.snapshots.front().frames) {
        const auto& description = capture.frames.frames[frame.frameIndex];
        const auto addresses = AddressesOf(description);
        for (std::size_t i = 0; i < frame.content.registers.size(); ++i) {
            mWords[{static_cast<int>(description.mFunctionCode), addresses[i]}] = frame.content.registers[i];
        }
    }
}

std::vector<std::uint16_t> FirstRegisters::Of(int function, std::uint16_t address, std::size_t count) const {
    std::vector<std::uint16_t> registers;
    for (std::size_t i = 0; i < count; ++i) {
        const auto word = mWords.find({function, address + static_cast<int>(i)});
        registers.push_back(word == mWords.end() ? std::uint16_t{0} : word->second);
    }
    return registers;
}

std::string FirstOf(std::span<const std::uint16_t> registers) {
    constexpr std::size_t MOST = 4;
    return HexOf(registers.first(std::min(registers.size(), MOST))) + (registers.size() > MOST ? " ..." : "");
}

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

}  // namespace kzm::ModbusTool
