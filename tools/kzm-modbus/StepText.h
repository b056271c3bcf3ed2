#pragma once

#include <string>
#include <vector>

#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusTool {

// One step of an explanation in a line.
struct StepText {
    std::string label;     // what it is; empty for what is said elsewhere
    std::string text;      // what came of it
    bool changes = true;   // whether it made the value another
    bool isPlaced = true;  // whether a member of the profile caused it, beside the element as a whole
};

// A step of `part`. Without a label: FRAME, and those that only say what a part is.
StepText TextOf(const ModbusGateway::Explanation& part, const ModbusGateway::Explanation::Step& step);

// The value of a part, where its steps do not show it already; empty otherwise.
std::string ValueText(const ModbusGateway::Explanation& part);

// Steps that an element has had no need of, by their labels.
std::vector<const char*> MissingSteps(const ModbusGateway::Explanation& part);

// What a part is, beside its heading: the type of an element, the chain of a computation.
std::string KindText(const ModbusGateway::Explanation& part);

}  // namespace kzm::ModbusTool
