#include "gateway/modbus/RequestLimits.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;

std::uint16_t MaxReadCount(ModbusFunctionCode functionCode) {
    switch (functionCode) {
        case ModbusFunctionCode::READ_COILS:
        case ModbusFunctionCode::READ_DISCRETE_INPUTS:
            return 2000;
        case ModbusFunctionCode::READ_HOLDING_REGISTERS:
        case ModbusFunctionCode::READ_INPUT_REGISTERS:
            return 125;
        case ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS:
            break;
    }
    return 0;
}

}  // namespace kzm::ModbusGateway
