#include "gateway/chains/SettingReaders.h"

#include <algorithm>

#include "gateway/chains/NumberOrder.h"
#include "gateway/json/JsonCursor.h"

namespace kzm::ModbusGateway::SettingReaders {

using nlohmann::json;
using Choice = ChainSettings::Choice;

namespace {

bool IsBit(const json& value) {
    return value.is_number_integer() && value.get<std::uint64_t>() < 64;
}

bool IsLabel(const json& value) {
    return value.is_string() && !value.get_ref<const std::string&>().empty();
}

// The number or boolean that a text stands for; null for any other text.
json ValueOf(const std::string& text) {
    if (const auto number = ParseNumber(text)) {
        return *number;
    }
    json value = json::parse(text, nullptr, /*allow_exceptions=*/false);
    return value.is_boolean() || IsNumber(value, -HUGE_VAL) ? value : nullptr;
}

// Takes the choices unless there is none, or two are for one number.
bool Take(std::vector<Choice> choices, ChainSettings& settings) {
    for (auto choice = choices.begin(); choice != choices.end(); ++choice) {
        const bool known =
            choice->value.is_number() && std::any_of(choices.begin(), choice, [&](const Choice& earlier) {
                return earlier.value.is_number() && OrderOf(earlier.value, choice->value, 0) == 0;
            });
        if (known) {
            return false;
        }
    }
    settings.choices = std::move(choices);
    return !settings.choices.empty();
}

}  // namespace

bool IsNumber(const json& value, double least) {
    return value.is_number() && std::isfinite(value.get<double>()) && value.get<double>() >= least;
}

bool ReadDeadBand(const json& value, ChainSettings& settings) {
    return IsNumber(value, 0) && ReadNumber<&ChainSettings::deadBand>(value, settings);
}

bool ReadBit(const json& value, ChainSettings& settings) {
    settings.bit = IsBit(value) ? value.get<unsigned>() : settings.bit;
    return IsBit(value);
}

bool ReadLabelsByValue(const json& value, ChainSettings& settings) {
    std::vector<Choice> choices;
    for (const auto& [text, label] : value.items()) {
        if (!value.is_object() || !IsLabel(label)) {
            return false;
        }
        choices.push_back({ValueOf(text), text, label.get<std::string>()});
    }
    return Take(std::move(choices), settings);
}

bool ReadLabelsByBit(const json& value, ChainSettings& settings) {
    std::vector<Choice> choices;
    for (const auto& item : value) {
        if (!item.is_object() || item.size() != 2 || !IsBit(item.value("bit", json())) ||
            !IsLabel(item.value("label", json()))) {
            return false;
        }
        choices.push_back({item["bit"], {}, item["label"].get<std::string>()});
    }
    return value.is_array() && Take(std::move(choices), settings);
}

bool ReadDefault(const json& value, ChainSettings& settings) {
    settings.defaultLabel = IsLabel(value) ? value.get<std::string>() : settings.defaultLabel;
    return IsLabel(value);
}

}  // namespace kzm::ModbusGateway::SettingReaders
