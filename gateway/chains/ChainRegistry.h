#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "DataModel/ProcessingChain.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// The kind of a processing chain's result. A label is a text that names a state; the object's labels translate it.
enum class ChainResult { NUMBER, BOOLEAN, LABEL };

// A processing chain that a program brings along. A profile names it with "chain", like those of the library.
struct CustomChain {
    // The base class of all chains.
    using Chain = ModbusDeviceModel::ProcessingChain;

    // As profiles write it; not empty.
    std::string name;
    // The type of each input by its name; at least one. A profile must give exactly these. The chain of an alarm has
    // the inputs "left" and "right", or "left" alone, and a BOOLEAN result.
    Chain::Signature inputs;
    ChainResult result = ChainResult::NUMBER;
    // Every label that the chain can give; only for LABEL.
    std::vector<std::string> labels;
    // Makes the chain for one place of a profile. `settings` is the "settings" object there, empty if there is none.
    // The result may be shared among places, is called by many threads at once, and must have HasEnumOutput() exactly
    // if `result` is LABEL. What it throws (derived from std::exception, except std::bad_alloc), and null, becomes an
    // error of the profile at the settings, with what() as its message.
    std::function<std::shared_ptr<Chain>(const nlohmann::json& settings)> make;
};

// The processing chains that a program adds to those of docs/profile.md. Pass it to ProfileLoader::Load:
//
//     ChainRegistry chains;
//     chains.Add({.name = "smoothed",
//                 .inputs = {{"value", ModbusDeviceModel::ProcessingChainOperandType::NUMBER}},
//                 .make = [](const nlohmann::json& settings) {
//                     return std::make_shared<Smoothed>(settings.value("weight", 0.1));
//                 }});
//     const auto loaded = ProfileLoader::Load(text, chains);
//
// A loaded profile keeps the chains that were made, not the registry. Reading by many threads at once is safe; Add is
// not, neither beside another Add nor beside a reader. Logs nothing.
class KZM_GATEWAY_EXPORT ChainRegistry {
public:
    // std::invalid_argument, with the registry unchanged, for a chain without name, inputs or `make`, with a name that
    // is taken (by one of the library's chains, too), or with labels that its result does not have.
    void Add(CustomChain chain);

    // Null for an unknown name; this library's own chains are not in here. Valid as long as the registry.
    const CustomChain* Find(const std::string& name) const;

    // By name.
    const std::map<std::string, CustomChain>& GetChains() const { return mChains; }

private:
    std::map<std::string, CustomChain> mChains;
};

}  // namespace kzm::ModbusGateway
