#include <algorithm>
#include <iostream>

#include "ExitStatus.h"
#include "GuessText.h"
#include "Text.h"
#include "gateway/cache/FrameAddresses.h"
#include "gateway/diagnosis/Interpretation.h"
#include "gateway/modbus/FunctionName.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::ModbusFunctionCode;

namespace {

constexpr double LIKELY = 0.5;  // a probability from which a guess is an object of the profile

// A guessed value on its way into the profile.
struct Guessed {
    ModbusFunctionCode function;
    std::uint16_t address;
    const Guess::Candidate& candidate;
    std::vector<std::uint16_t> registers;  // of the first snapshot, in wire order
};

// The name of the frame that holds all registers of a value; empty if they are in two frames.
std::string FrameOf(const Guessed& guessed, const DeviceFrames& device) {
    for (std::size_t i = 0; i < device.frames.size(); ++i) {
        const auto addresses = AddressesOf(device.frames[i]);
        const auto holds = [&](int address) { return std::ranges::find(addresses, address) != addresses.end(); };
        bool holdsAll = device.frames[i].mFunctionCode == guessed.function;
        for (int offset = 0; holdsAll && offset < guessed.candidate.count; ++offset) {
            holdsAll = holds(guessed.address + offset);
        }
        if (holdsAll) {
            return device.names[i];
        }
    }
    return {};
}

// The mask of a text with one character per register.
std::string MaskOf(const std::vector<std::uint16_t>& registers) {
    const bool isInLowByte = std::ranges::all_of(registers, [](std::uint16_t word) { return word < 0x100; });
    std::string mask = "0x";
    for (std::size_t i = 0; i < registers.size(); ++i) {
        mask += isInLowByte ? "00FF" : "FF00";
    }
    return mask;
}

// The registers as a pattern of a profile, the most significant first.
std::string PatternOf(const Guessed& guessed) {
    std::vector<std::uint16_t> registers = guessed.registers;
    if (guessed.candidate.order == "little") {
        std::ranges::reverse(registers);
    }
    std::string text = HexOf(registers);
    std::erase(text, ' ');
    return "0x" + text;
}

// The members of an element after its address; empty for a type that profiles do not have.
std::string MembersOf(const Guessed& guessed) {
    const Guess::Candidate& candidate = guessed.candidate;
    const Interpretation interpretation{
        candidate.type, static_cast<std::uint8_t>(candidate.count),
        candidate.order == "little" ? ByteOrderingEnum::LITTLE_ENDIAN_WORDS : ByteOrderingEnum::BIG_ENDIAN_WORDS};
    std::string members = interpretation.GetProfileMembers(candidate.scale, static_cast<float>(candidate.offset));
    if (members.empty()) {
        return members;
    }
    members += candidate.type == "text-masked" ? R"(, "mask": ")" + MaskOf(guessed.registers) + '"' : "";
    return members + (candidate.isInvalid ? R"(, "notAvailable": ")" + PatternOf(guessed) + '"' : "");
}

// Why a value is only a comment; empty if it is an object.
std::string WhyComment(const Guessed& guessed, bool isDecided, const std::string& frame, const std::string& members) {
    const Guess::Candidate& candidate = guessed.candidate;
    if (members.empty()) {
        return TypeText(candidate, isDecided) + ", which profiles do not have";
    }
    if (frame.empty()) {
        return TypeText(candidate, isDecided) + ", which is in two frames";
    }
    if (candidate.probability < LIKELY) {
        return "undecided";
    }
    const bool needsOrder = TypeText(candidate, /*isDecided=*/true) != TypeText(candidate, /*isDecided=*/false);
    return needsOrder && !isDecided ? "word order undecided" : "";
}

// A list of the profile, and the comments between its members.
class ListLines {
public:
    void AddComment(const std::string& text) { mLines.push_back("// " + text); }
    void AddMember(const std::string& text) {
        mLast = mLines.size();
        mLines.push_back(text);
    }
    bool HasMembers() const { return mLast != NONE; }
    void Print() const {
        for (std::size_t i = 0; i < mLines.size(); ++i) {
            std::cout << "        " << mLines[i] << (mLines[i].starts_with('{') && i != mLast ? ",\n" : "\n");
        }
    }

private:
    std::vector<std::string> mLines;
    static constexpr std::size_t NONE = ~std::size_t{0};

    std::size_t mLast = NONE;
};

std::string After(const char* before, const std::string& text) {
    return text.empty() ? text : before + text;
}

void AddValue(const Guessed& guessed, bool isDecided, const DeviceFrames& device, const std::string& others,
              ListLines& objects) {
    const std::string frame = FrameOf(guessed, device);
    const std::string members = MembersOf(guessed);
    const std::string address = std::to_string(guessed.address);
    const std::string why = WhyComment(guessed, isDecided, frame, members);
    objects.AddComment(address + ": " + FirstOf(guessed.registers) + ", " + ValueText(guessed.candidate) +
                       ", probability " + ProbabilityText(guessed.candidate.probability) + After("; or ", others) +
                       After("; ", why));
    if (members.empty() || frame.empty()) {
        return;
    }
    const std::string object = R"({"name": ")" + std::string(NameOf(guessed.function)) + ' ' + address +
                               R"(", "value": {"address": )" + address + R"(, "frame": )" +
                               nlohmann::json(frame).dump() + ", " + members + "}}";
    if (why.empty()) {
        objects.AddMember(object);
    } else {
        objects.AddComment(object);
    }
}

ListLines ObjectsOf(const Capture& capture, const Guess& guess) {
    const FirstRegisters registers(capture);
    ListLines objects;
    for (const auto& [position, chosen] : guess.division) {
        const Guess::Value& value = guess.values[position];
        const Guess::Candidate& best = value.candidates[chosen];
        const Guessed guessed{static_cast<ModbusFunctionCode>(value.function), value.address, best,
                              registers.Of(value.function, value.address, best.count)};
        AddValue(guessed, !guess.order.empty(), capture.frames, OtherTypes(value, chosen), objects);
    }
    return objects;
}

// All frames of the capture, so that it can be read with the profile.
ListLines FrameLines(const DeviceFrames& device) {
    ListLines lines;
    const auto capture = nlohmann::ordered_json::parse(Capture{}.Write(device));
    for (const auto& frame : capture.at("frames")) {
        lines.AddMember(frame.dump());
    }
    return lines;
}

}  // namespace

void PrintProfile(const Capture& capture, const Guess& guess) {
    const ListLines objects = ObjectsOf(capture, guess);
    if (!objects.HasMembers()) {
        throw Failure(ExitStatus::NOT_FOUND,
                      "no value is likely enough for a profile; take several snapshots, or tell with --expect what the "
                      "display shows");
    }
    const bool isDecided = !guess.order.empty();
    std::cout << "// Word order: " << (isDecided ? guess.order : "undecided") << '\n';
    for (const std::string& evidence : guess.evidence) {
        std::cout << "// - " << evidence << '\n';
    }
    std::cout << "{\n    \"device\": {" << (isDecided ? R"("wordOrder": ")" + guess.order + '"' : "")
              << "},\n    \"frames\": [\n";
    FrameLines(capture.frames).Print();
    std::cout << "    ],\n    \"objects\": [\n";
    objects.Print();
    std::cout << "    ]\n}\n";
}

}  // namespace kzm::ModbusTool
