#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string_view>

#include "gateway/chains/ChainRegistry.h"

// The processing chains that a device profile can name, one row each.
namespace kzm::ModbusGateway {

struct ChainCall;
struct ChainSettings;

// Whether a chain takes one input, or two or more, and their names if each has its own role; otherwise any names will
// do.
struct ChainInputs {
    std::span<const std::string_view> names;
    bool isSingle = false;
};

// Types that the first input and the others have together.
struct ChainTypes {
    ModbusDeviceModel::ProcessingChainOperandType first;
    ModbusDeviceModel::ProcessingChainOperandType others;
};

struct ChainSetting {
    std::string_view name;
    bool isRequired;
    std::string_view allowed;
    // False, with the settings unchanged, for a value that is not allowed.
    bool (*read)(const nlohmann::json& value, ChainSettings& settings);
};

struct ChainRow {
    std::string_view name;  // as profiles write it
    ChainInputs inputs;
    std::span<const ChainTypes> types;  // alternatives
    ChainResult result;
    std::span<const ChainSetting> settings;
    kz::orba::StatusCode (*compute)(const ChainCall& call, nlohmann::json& result);
};

std::span<const ChainRow> AllChains();

// Null for an unknown name.
const ChainRow* FindChain(std::string_view name);

}  // namespace kzm::ModbusGateway
