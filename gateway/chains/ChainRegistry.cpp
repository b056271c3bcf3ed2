#include "gateway/chains/ChainRegistry.h"

#include <stdexcept>
#include <utility>

#include "gateway/chains/ChainTable.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

void ChainRegistry::Add(CustomChain chain) {
    const std::string subject = "the processing chain " + Quoted(chain.name);
    if (chain.name.empty() || chain.inputs.empty() || !chain.make) {
        throw std::invalid_argument(subject + " needs a name, inputs and a function that makes it");
    }
    if (FindChain(chain.name) || Find(chain.name)) {
        throw std::invalid_argument(subject + " already exists");
    }
    if (chain.result != ChainResult::LABEL && !chain.labels.empty()) {
        throw std::invalid_argument(subject + " has labels, but its result is not a label");
    }
    std::string name = chain.name;
    mChains.emplace(std::move(name), std::move(chain));
}

const CustomChain* ChainRegistry::Find(const std::string& name) const {
    const auto found = mChains.find(name);
    return found == mChains.end() ? nullptr : &found->second;
}

}  // namespace kzm::ModbusGateway
