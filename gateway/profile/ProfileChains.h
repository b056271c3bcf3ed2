#pragma once

#include <map>
#include <string>

#include "gateway/chains/ChainFactory.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ValueKind.h"

// What the places of a device profile that name a processing chain, computations and alarms, have in common.
namespace kzm::ModbusGateway {

// What is known of a chain's input, and where it stands in the profile.
struct ChainInput {
    JsonCursor place;
    ValueKind kind;
};
using ChainInputsByName = std::map<std::string, ChainInput>;

// Reports what the factory found wrong with the members of a computation or an alarm.
void ReportFaults(const JsonCursor& place, const ChainFactory::Result& result);

// Reports each input that can never have the type that the chain, which was made, needs.
void CheckInputKinds(const ChainFactory::Result& made, const ChainInputsByName& inputs);

// The data-model class of what a chain gives.
std::string ClassNameOf(ChainResult result);

}  // namespace kzm::ModbusGateway
