#pragma once

#include <string>
#include <vector>

#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusTool {

using Selection = std::vector<const ModbusGateway::LoadedProfile::Object*>;

// The objects of a profile that are asked for, "NAME" (with every alias), "NAME/ALIAS" or by key; all when none is.
// Throws Failure for one that the profile does not have, and offers the nearest.
Selection SelectObjects(const ModbusGateway::LoadedProfile& profile, const std::vector<std::string>& wanted);

}  // namespace kzm::ModbusTool
