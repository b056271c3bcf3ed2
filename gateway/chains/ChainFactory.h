#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "gateway/chains/ChainRegistry.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

// Makes the processing chains of a gateway by name: those of ChainTable.h and the registered ones. What the former
// promise beyond the table:
//
// - A chain's status is SUCCESS and its result set, or the result is untouched: the platform's status for a missing
//   parameter; OUT_OF_RANGE for one that has the wrong type or is not finite, and for arithmetic that does not fit;
//   NOT_AVAILABLE where there is no value: division by zero, the unbalance of an average of zero, a choice without a
//   matching label.
// - "sum", "difference", "product" and "linear" of integers are integers, and OUT_OF_RANGE where a step does not fit 64
//   bits, signed or unsigned; "minimum" and "maximum" are one of the inputs as it is. All other numbers are floating
//   point.
// - Comparisons are exact for every mixture of integers and floating point. Numbers no further apart than the dead band
//   are equal, so that exactly one of "less", "equal" and "greater" is true, and "less or equal" is the opposite of
//   "greater". "inside band" is neither less than the low nor greater than the high end by more than the dead band,
//   "outside band" anything else. Texts and booleans are equal or not, whatever the dead band.
// - "scale10" is value * 10^exponent, the exponent -MAX_EXPONENT to MAX_EXPONENT (ExponentLimit.h). "unbalance" is the
//   largest deviation from the average in percent of the average's magnitude, "hypotenuse" the root of the sum of
//   the squares.
//
// Chains hold no state and are used by many threads at once. The factory is thread-safe and never throws for what is
// in a profile.
class ChainFactory {
public:
    struct Fault {
        // Members from the computation's object in the profile down to what is faulty: "chain", "inputs", or "settings"
        // and a setting. Empty: the object itself.
        Names path;
        std::string message;  // what is wrong, and what is allowed
    };

    struct Result {
        std::shared_ptr<ModbusDeviceModel::ProcessingChain> chain;  // null if there is a fault
        // Types that the inputs may have together, by the inputs' names; empty if there is no such chain.
        std::vector<ModbusDeviceModel::ProcessingChain::Signature> signatures;
        ChainResult result = ChainResult::NUMBER;
        Names labels;  // all that the chain can give, each once
        std::vector<Fault> faults;
    };

    // `inputs`: the parameters' keys, in any order; where the chain's inputs have names, just these. `settings`: an
    // object, or null for none. `custom`: chains known beside those of ChainTable.h.
    static Result Make(const std::string& name, const Names& inputs, const nlohmann::json& settings,
                       const ChainRegistry& custom = {});

    // The chain of a computed alarm, whose result must be a boolean: `left` and `right`, the operands' names, are its
    // inputs, whatever the inputs of a chain of ChainTable.h are called. A chain with one input gets the left operand.
    static Result MakeForAlarm(const std::string& name, const std::string& left, const std::string& right,
                               const nlohmann::json& settings, const ChainRegistry& custom = {});
};

}  // namespace kzm::ModbusGateway
