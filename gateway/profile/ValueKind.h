#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

#include "DataModel/ProcessingChain.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/chains/ChainRegistry.h"

namespace kzm::ModbusGateway {

// What a profile says of a value before the device is read.
enum class ValueKind : std::uint8_t {
    INTEGER,
    FLOAT,
    NUMBER,  // either of these
    BOOLEAN,
    LABEL,  // a text from a known set, or of a fixed form
    TEXT,
    DATE_TIME,
    OTHER,
};

ValueKind KindOf(const nlohmann::json& constant);
ValueKind KindOf(const ModbusDeviceModel::DeviceProfile::LogicCodeRow& type);
ValueKind KindOf(ChainResult result);

// Whether such a value can be a chain's parameter of that type.
bool MayBe(ValueKind kind, ModbusDeviceModel::ProcessingChainOperandType type);

}  // namespace kzm::ModbusGateway
