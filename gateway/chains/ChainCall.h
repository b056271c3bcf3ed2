#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

// The settings of a chain in a profile; each chain reads its own.
struct ChainSettings {
    struct Choice {
        nlohmann::json value;  // number, boolean, or the number of a bit; null for a text that is neither
        std::string text;      // the value as it was written
        std::string label;
    };

    nlohmann::json factor = 1;
    nlohmann::json offset = 0;
    nlohmann::json deadBand = 0;
    nlohmann::json low;
    nlohmann::json high;
    unsigned bit = 0;
    std::vector<Choice> choices;
    std::string defaultLabel;  // empty: none
};

// One computation, with parameters that satisfy the chain's signature and are finite.
struct ChainCall {
    const Names& inputs;
    const nlohmann::json& parameters;
    const ChainSettings& settings;

    const nlohmann::json& operator[](std::size_t input) const { return *parameters.find(inputs[input]); }
};

}  // namespace kzm::ModbusGateway
