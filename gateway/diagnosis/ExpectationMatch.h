#pragma once

#include <optional>

#include "gateway/diagnosis/Guess.h"
#include "gateway/diagnosis/ValueSpan.h"

namespace kzm::ModbusGateway {

// How a span shows what is expected.
struct ExpectationMatch {
    double scale = 1;
    double offset = 0;
    bool isSigned = false;
    double raw = 0;
    double bits = 0;  // the fewer, the more usual the scale and the nearer the number
};

// nullopt if the number does not show it at any snapshot, in any usual scale.
std::optional<ExpectationMatch> Match(const Expectation& expectation, const ValueSpan& span, const RegisterRun& run,
                                      WordOrder order);

// Makes the spans that show what is expected shorter, and all others at its register longer. Does nothing if no span
// shows it.
void Apply(const Expectations& expectations, const RegisterRun& run, WordOrder order, ValueSpans& spans);

}  // namespace kzm::ModbusGateway
