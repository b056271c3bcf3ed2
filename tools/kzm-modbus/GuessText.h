#pragma once

#include <map>
#include <span>
#include <string>
#include <utility>

#include "gateway/capture/Capture.h"
#include "gateway/diagnosis/Guess.h"

namespace kzm::ModbusTool {

// The registers of a capture's first snapshot, by function and address.
class FirstRegisters {
public:
    explicit FirstRegisters(const ModbusGateway::Capture& capture);

    // In wire order; 0 for registers that are not there.
    std::vector<std::uint16_t> Of(int function, std::uint16_t address, std::size_t count) const;

private:
    std::map<std::pair<int, int>, std::uint16_t> mWords;
};

// How a guess is told. The first registers in hex, "504D 2D33 4600 0000 ..."; the value, or "not available"; "0.97";
// "uint32 little", "text 8"; the other types that a register may have with their probabilities: "int16 0.30, uint32 big
// 0.12".
std::string FirstOf(std::span<const std::uint16_t> registers);
std::string ValueText(const ModbusGateway::Guess::Candidate& candidate);
std::string ProbabilityText(double probability);
std::string TypeText(const ModbusGateway::Guess::Candidate& candidate, bool isDecided);
std::string OtherTypes(const ModbusGateway::Guess::Value& value, std::size_t chosen);

// A guess as a device profile that can be loaded, with the evidence as comments. What is undecided or cannot be said in
// a profile is a comment, too. Throws Failure if no value is likely enough.
void PrintProfile(const ModbusGateway::Capture& capture, const ModbusGateway::Guess& guess);

}  // namespace kzm::ModbusTool
