#include "gateway/chains/ChainFactory.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <set>
#include <utility>

#include "Support/Status.h"
#include "gateway/chains/ChainCall.h"
#include "gateway/chains/ChainTable.h"
#include "gateway/chains/NumberOrder.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ProcessingChain;
using nlohmann::json;
namespace Status = ModbusDeviceModel::Status;

namespace {

using Signature = ProcessingChain::Signature;

class TableChain final : public ProcessingChain {
public:
    TableChain(const ChainRow& row, std::vector<Signature> signatures, Names inputs, ChainSettings settings)
        : ProcessingChain(std::move(signatures), std::string(row.name), row.result == ChainResult::LABEL),
          mRow(row),
          mInputs(std::move(inputs)),
          mSettings(std::move(settings)) {}

private:
    kz::orba::StatusCode Process(const json& parameters, json& result) const override {
        const ChainCall call{mInputs, parameters, mSettings};
        for (std::size_t i = 0; i < mInputs.size(); ++i) {
            if (call[i].is_number() && !std::isfinite(call[i].get<double>())) {
                return Status::OUT_OF_RANGE;
            }
        }
        json value;
        const auto status = mRow.compute(call, value);
        if (status == Status::SUCCESS) {
            result = std::move(value);
        }
        return status;
    }

    const ChainRow& mRow;
    Names mInputs;
    ChainSettings mSettings;
};

constexpr auto ANY = [](const auto&) { return true; };
constexpr auto GIVES_BOOLEAN = [](const auto& chain) { return chain.result == ChainResult::BOOLEAN; };

Names NamesOf(const auto& rows, auto suits) {
    Names names;
    for (const auto& row : rows) {
        if (suits(row)) {
            names.emplace_back(row.name);
        }
    }
    return names;
}

Names NamesOfChains(auto suits, const ChainRegistry& custom) {
    Names names = NamesOf(AllChains(), suits);
    for (const auto& [name, chain] : custom.GetChains()) {
        if (suits(chain)) {
            names.push_back(name);
        }
    }
    return names;
}

void ReportUnknown(const std::string& name, bool exists, const Names& known, ChainFactory::Result& result) {
    std::string list;  // all of them, however many there are
    for (const auto& other : known) {
        list += (list.empty() ? "" : ", ") + Quoted(other);
    }
    result.faults.push_back({{"chain"},
                             exists ? "the chain " + Quoted(name) + " does not give true or false; allowed: " + list
                                    : "there is no chain " + Quoted(name) + Alternatives(name, known, list)});
}

void CheckNamedInputs(std::string_view chain, const Names& inputs, const Names& roles, ChainFactory::Result& result) {
    if (!std::is_permutation(roles.begin(), roles.end(), inputs.begin(), inputs.end())) {
        result.faults.push_back({{"inputs"},
                                 "the chain " + Quoted(chain) + " does not have the inputs " + ListOf(inputs) +
                                     "; needed: exactly " + ListOf(roles)});
    }
}

// Puts the inputs into the order of the chain's own ones; a fault where they do not suit.
void CheckInputs(const ChainRow& row, Names& inputs, ChainFactory::Result& result) {
    const Names roles(row.inputs.names.begin(), row.inputs.names.end());
    if (!roles.empty()) {
        CheckNamedInputs(row.name, inputs, roles, result);
        inputs = roles;
    } else if (row.inputs.isSingle ? inputs.size() != 1 : inputs.size() < 2) {
        result.faults.push_back({{"inputs"},
                                 "the chain " + Quoted(row.name) + " cannot have " + std::to_string(inputs.size()) +
                                     " inputs; allowed: " + (row.inputs.isSingle ? "one" : "two or more") +
                                     ", under any name"});
    }
}

void ReadSetting(const ChainRow& row, const std::string& name, const json& value, ChainSettings& settings,
                 ChainFactory::Result& result) {
    const auto setting =
        std::find_if(row.settings.begin(), row.settings.end(), [&](const auto& known) { return known.name == name; });
    std::string message;
    if (setting == row.settings.end()) {
        message = "the chain " + Quoted(row.name) + " has no setting " + Quoted(name) +
                  Alternatives(name, NamesOf(row.settings, ANY));
    } else if (!setting->read(value, settings)) {
        message = Quoted(name) + " cannot be " + Cited(value) + "; allowed: " + std::string(setting->allowed);
    } else {
        return;
    }
    result.faults.push_back({{"settings", name}, message});
}

bool AreSettings(const json& given, ChainFactory::Result& result) {
    if (!given.is_object() && !given.is_null()) {
        result.faults.push_back({{"settings"}, "settings cannot be " + Cited(given) + "; allowed: an object"});
        return false;
    }
    return true;
}

ChainSettings ReadSettings(const ChainRow& row, const json& given, ChainFactory::Result& result) {
    ChainSettings settings;
    if (!AreSettings(given, result)) {
        return settings;
    }
    for (const auto& [name, value] : given.items()) {
        ReadSetting(row, name, value, settings, result);
    }
    for (const auto& setting : row.settings) {
        if (setting.isRequired && !given.contains(setting.name)) {
            result.faults.push_back({{},
                                     "the chain " + Quoted(row.name) + " needs the setting " + Quoted(setting.name) +
                                         "; allowed: " + std::string(setting.allowed)});
        }
    }
    if (settings.low.is_number() && settings.high.is_number() && OrderOf(settings.low, settings.high, 0) > 0) {
        result.faults.push_back(
            {{"settings", "low"}, "\"low\" is above \"high\"; allowed: up to " + Cited(settings.high)});
    }
    return settings;
}

Names LabelsOf(const ChainSettings& settings) {
    std::set<std::string> labels{settings.defaultLabel};
    for (const auto& choice : settings.choices) {
        labels.insert(choice.label);
    }
    labels.erase("");
    return {labels.begin(), labels.end()};
}

std::vector<Signature> SignaturesOf(const ChainRow& row, const Names& inputs) {
    std::vector<Signature> signatures;
    for (const auto& types : row.types) {
        Signature& signature = signatures.emplace_back();
        for (const auto& input : inputs) {
            signature.emplace(input, signature.empty() ? types.first : types.others);
        }
    }
    return signatures;
}

void Finish(const ChainRow& row, Names inputs, const json& given, ChainFactory::Result& result) {
    ChainSettings settings = ReadSettings(row, given, result);
    result.result = row.result;
    result.signatures = SignaturesOf(row, inputs);
    if (result.faults.empty()) {
        result.labels = LabelsOf(settings);
        result.chain = std::make_shared<TableChain>(row, result.signatures, std::move(inputs), std::move(settings));
    }
}

// What its maker throws is a fault of the settings.
void Finish(const CustomChain& custom, const json& given, ChainFactory::Result& result) {
    result.result = custom.result;
    result.signatures = {custom.inputs};
    result.labels = custom.labels;
    if (!AreSettings(given, result) || !result.faults.empty()) {
        return;
    }
    std::string fault = "it could not be made";
    try {
        result.chain = custom.make(given.is_null() ? json::object() : given);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        fault = error.what();
    }
    if (result.chain && result.chain->HasEnumOutput() != (custom.result == ChainResult::LABEL)) {
        fault = "it was registered with another kind of result than it gives";
        result.chain.reset();
    }
    if (!result.chain) {
        result.faults.push_back({{"settings"}, "the chain " + Quoted(custom.name) + ": " + fault});
    }
}

Names InputsOf(const CustomChain& custom) {
    Names names;
    for (const auto& [name, type] : custom.inputs) {
        names.push_back(name);
    }
    return names;
}

}  // namespace

ChainFactory::Result ChainFactory::Make(const std::string& name, const Names& inputs, const json& settings,
                                        const ChainRegistry& custom) {
    Result result;
    if (const ChainRow* row = FindChain(name)) {
        Names ordered = inputs;
        CheckInputs(*row, ordered, result);
        Finish(*row, std::move(ordered), settings, result);
    } else if (const CustomChain* own = custom.Find(name)) {
        CheckNamedInputs(name, inputs, InputsOf(*own), result);
        Finish(*own, settings, result);
    } else {
        ReportUnknown(name, /*exists=*/false, NamesOfChains(ANY, custom), result);
    }
    return result;
}

ChainFactory::Result ChainFactory::MakeForAlarm(const std::string& name, const std::string& left,
                                                const std::string& right, const json& settings,
                                                const ChainRegistry& custom) {
    Result result;
    const ChainRow* row = FindChain(name);
    const CustomChain* own = custom.Find(name);
    if (row && GIVES_BOOLEAN(*row)) {
        Finish(*row, row->inputs.isSingle ? Names{left} : Names{left, right}, settings, result);
    } else if (own && GIVES_BOOLEAN(*own)) {
        const Names inputs = own->inputs.size() == 1 ? Names{left} : Names{left, right};
        CheckNamedInputs(name, inputs, InputsOf(*own), result);
        Finish(*own, settings, result);
    } else {
        ReportUnknown(name, row || own, NamesOfChains(GIVES_BOOLEAN, custom), result);
    }
    return result;
}

}  // namespace kzm::ModbusGateway
