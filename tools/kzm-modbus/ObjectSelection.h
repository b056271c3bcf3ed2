#pragma once

#include <string>
#include <vector>

#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusTool {

// "NAME" or "NAME/ALIAS".
std::string NameOf(const ModbusGateway::LoadedProfile::Object& object);

using Selection = std::vector<const ModbusGateway::LoadedProfile::Object*>;

// The objects of a profile that are asked for, "NAME" (with every alias), "NAME/ALIAS" or by key; all when none is.
// Throws Failure for one that the profile does not have, and offers the nearest.
Selection SelectObjects(const ModbusGateway::LoadedProfile& profile, const std::vector<std::string>& wanted);

// What can be explained under one name.
struct Targets {
    Selection objects;
    std::vector<const ModbusGateway::LoadedProfile::Alarm*> alarms;
};

// The objects that SelectObjects finds for a text, and the alarms of that name, alias or both. Throws Failure if there
// is neither, and offers the nearest of both.
Targets SelectTargets(const ModbusGateway::LoadedProfile& profile, const std::string& wanted);

}  // namespace kzm::ModbusTool
