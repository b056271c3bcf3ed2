#include "gateway/profile/ProfileChains.h"

#include <algorithm>
#include <array>
#include <vector>

#include "Device/CustomMeasureClassName.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::ProcessingChain;
using ModbusDeviceModel::ProcessingChainOperandType;

namespace {

using Misfits = std::vector<std::pair<JsonCursor, ProcessingChainOperandType>>;

const char* Describe(ProcessingChainOperandType type) {
    switch (type) {
        case ProcessingChainOperandType::NUMBER:
            return "a number";
        case ProcessingChainOperandType::INTEGER:
            return "a whole number";
        case ProcessingChainOperandType::BOOLEAN:
            return "true or false";
        case ProcessingChainOperandType::STRING:
            return "a text";
        case ProcessingChainOperandType::OBJECT:
            break;
    }
    return "an object";
}

// The inputs that cannot have the types of one of the chain's alternatives.
Misfits MisfitsOf(const ProcessingChain::Signature& signature, const ChainInputsByName& inputs) {
    Misfits misfits;
    for (const auto& [name, input] : inputs) {
        const auto type = signature.at(name);
        if (!MayBe(input.kind, type)) {
            misfits.emplace_back(input.place, type);
        }
    }
    return misfits;
}

}  // namespace

void ReportFaults(const JsonCursor& place, const ChainFactory::Result& result) {
    for (const auto& fault : result.faults) {
        JsonCursor member = place;
        for (const auto& name : fault.path) {
            member = member.At(name);
        }
        member.Error(fault.message);
    }
}

void CheckInputKinds(const ChainFactory::Result& made, const ChainInputsByName& inputs) {
    std::vector<Misfits> alternatives;
    for (const auto& signature : made.signatures) {
        alternatives.push_back(MisfitsOf(signature, inputs));
    }
    const auto best = std::min_element(alternatives.begin(), alternatives.end(),
                                       [](const auto& left, const auto& right) { return left.size() < right.size(); });
    for (const auto& [place, type] : *best) {
        place.Error("this element cannot be an input of the chain " + Quoted(made.chain->GetName()) +
                    "; needed: " + Describe(type) + (made.signatures.size() > 1 ? ", like its other inputs" : ""));
    }
}

std::string ClassNameOf(ChainResult result) {
    constexpr std::array<LogicCodeIdentifier, 3> CODES{LogicCodeIdentifier{31},   // NUMBER: float32
                                                       LogicCodeIdentifier{10},   // BOOLEAN: boolean
                                                       LogicCodeIdentifier{62}};  // LABEL: text
    std::string name;
    ModbusDeviceModel::Device::CustomMeasureClassName::GetClassNameForLogicCode(
        CODES.at(static_cast<std::size_t>(result)), name);
    return name;
}

}  // namespace kzm::ModbusGateway
