#include "gateway/profile/ValueKind.h"

#include <nlohmann/json.hpp>

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ProcessingChainOperandType;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::ValueClass;

ValueKind KindOf(const nlohmann::json& constant) {
    if (constant.is_number()) {
        return constant.is_number_float() ? ValueKind::FLOAT : ValueKind::INTEGER;
    }
    if (constant.is_boolean()) {
        return ValueKind::BOOLEAN;
    }
    return constant.is_string() ? ValueKind::TEXT : ValueKind::OTHER;
}

ValueKind KindOf(const LogicCodeRow& type) {
    if (type.family == Family::FREQUENCY_CLASS) {
        return ValueKind::INTEGER;  // although its class is that of texts
    }
    switch (type.valueClass) {
        case ValueClass::BOOLEAN:
            return ValueKind::BOOLEAN;
        case ValueClass::INTEGER:
            return type.family == Family::SCALED_POWER ? ValueKind::FLOAT : ValueKind::INTEGER;
        case ValueClass::FLOAT:
            return ValueKind::FLOAT;
        case ValueClass::STRING:
            return type.family == Family::TEXT ? ValueKind::TEXT : ValueKind::LABEL;
        case ValueClass::DATE_TIME:
            return ValueKind::DATE_TIME;
        case ValueClass::NONE:
            break;
    }
    return ValueKind::OTHER;
}

ValueKind KindOf(ChainResult result) {
    switch (result) {
        case ChainResult::NUMBER:
            return ValueKind::NUMBER;
        case ChainResult::BOOLEAN:
            return ValueKind::BOOLEAN;
        case ChainResult::LABEL:
            break;
    }
    return ValueKind::LABEL;
}

bool MayBe(ValueKind kind, ProcessingChainOperandType type) {
    switch (type) {
        case ProcessingChainOperandType::NUMBER:
            return kind == ValueKind::INTEGER || kind == ValueKind::FLOAT || kind == ValueKind::NUMBER;
        case ProcessingChainOperandType::INTEGER:
            return kind == ValueKind::INTEGER || kind == ValueKind::NUMBER;
        case ProcessingChainOperandType::BOOLEAN:
            return kind == ValueKind::BOOLEAN;
        case ProcessingChainOperandType::STRING:
            return kind == ValueKind::LABEL || kind == ValueKind::TEXT || kind == ValueKind::DATE_TIME;
        case ProcessingChainOperandType::OBJECT:
            break;
    }
    return kind == ValueKind::OTHER;
}

}  // namespace kzm::ModbusGateway
