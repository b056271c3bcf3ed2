#pragma once

#include <cstdint>

#include "DeviceProfile/FrameDataValue.h"
#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/modbus/TcpMessage.h"

// Function code and data of requests and of the answers to them, alike on TCP and on serial lines. What takes an answer
// returns 0 or an error number of libmodbus: the exception that the device answered with, EMBBADEXC for an exception
// that does not exist, EMBBADDATA for an answer that does not fit the request.
namespace kzm::ModbusGateway {

// Added to the function code of an answer that is an exception.
inline constexpr std::uint8_t EXCEPTION_FLAG = 0x80;

// `count`: 1 to MaxReadCount(functionCode).
Bytes ReadRequest(ModbusDeviceModel::ModbusFunctionCode functionCode, std::uint16_t first, std::uint16_t count);

// Of 1 to MAX_WRITE_COUNT registers.
Bytes WriteRequest(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values);

// Fills `values` with the registers (or with 0 or 1 per bit) that a read request asked for; touches them only then.
int TakeValues(const Bytes& request, const Bytes& answer, std::uint16_t* values);

// Whether the answer confirms a write request.
int TakeConfirmation(const Bytes& request, const Bytes& answer);

}  // namespace kzm::ModbusGateway
