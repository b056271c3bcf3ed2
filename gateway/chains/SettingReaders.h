#pragma once

#include <cmath>

#include "gateway/chains/ChainCall.h"

// Store the value of one setting; false, with the settings unchanged, for a value that is not allowed.
namespace kzm::ModbusGateway::SettingReaders {

// A finite number, not below `least`.
bool IsNumber(const nlohmann::json& value, double least);

template <nlohmann::json ChainSettings::*SETTING>
bool ReadNumber(const nlohmann::json& value, ChainSettings& settings) {
    const bool allowed = IsNumber(value, -HUGE_VAL);
    settings.*SETTING = allowed ? value : settings.*SETTING;
    return allowed;
}

bool ReadDeadBand(const nlohmann::json& value, ChainSettings& settings);
bool ReadBit(const nlohmann::json& value, ChainSettings& settings);
// An object of "value": "label".
bool ReadLabelsByValue(const nlohmann::json& value, ChainSettings& settings);
// A list of {"bit": number, "label": text}.
bool ReadLabelsByBit(const nlohmann::json& value, ChainSettings& settings);
bool ReadDefault(const nlohmann::json& value, ChainSettings& settings);

}  // namespace kzm::ModbusGateway::SettingReaders
