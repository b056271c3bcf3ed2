#pragma once

#include <optional>
#include <string_view>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// What a function code reads, as profiles, captures and the program write it: "coils", "discrete inputs", "holding",
// "input"; empty for one that reads nothing. Logs nothing; any thread.
KZM_GATEWAY_EXPORT std::string_view NameOf(ModbusDeviceModel::ModbusFunctionCode functionCode);

// The function code of such a name; nullopt for any other text.
KZM_GATEWAY_EXPORT std::optional<ModbusDeviceModel::ModbusFunctionCode> FindReadFunction(std::string_view name);

}  // namespace kzm::ModbusGateway
