#pragma once

#include <map>
#include <string>

#include "gateway/chains/ChainFactory.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ValueKind.h"

// Shared by the places of a device profile that name a processing chain: computations and alarms.
namespace kzm::ModbusGateway {

// What is known of a chain's input, and its place in the profile.
struct ChainInput {
    JsonCursor place;
    ValueKind kind;
};
using ChainInputsByName = std::map<std::string, ChainInput>;

// Reports the factory's faults at the members of a computation or an alarm.
void ReportFaults(const JsonCursor& place, const ChainFactory::Result& result);

// Reports each input that can never have the type that the chain needs. `made`: without faults.
void CheckInputKinds(const ChainFactory::Result& made, const ChainInputsByName& inputs);

// The data-model class of a chain's result.
std::string ClassNameOf(ChainResult result);

}  // namespace kzm::ModbusGateway
