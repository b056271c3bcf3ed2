#include "gateway/modbus/Requests.h"

#include <modbus/modbus.h>

#include <algorithm>

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;

namespace {

// Function code, first address and count: also what confirms a write.
Bytes RequestHead(ModbusFunctionCode functionCode, std::uint16_t first, std::size_t count) {
    Bytes request{static_cast<std::uint8_t>(functionCode)};
    AppendWord(request, first);
    AppendWord(request, count);
    return request;
}

int ExceptionOf(std::uint8_t code) {
    const bool isDefined = code > 0 && code < MODBUS_EXCEPTION_MAX && code != MODBUS_EXCEPTION_NOT_DEFINED;
    return isDefined ? MODBUS_ENOBASE + code : EMBBADEXC;
}

// 0 if the answer is one to the function of the request.
int CheckFunction(const Bytes& request, const Bytes& answer) {
    if (answer.size() == 2 && answer[0] == (request[0] | EXCEPTION_FLAG)) {
        return ExceptionOf(answer[1]);
    }
    return answer.size() >= 2 && answer[0] == request[0] ? 0 : EMBBADDATA;
}

bool IsOfBits(std::uint8_t function) {
    const auto functionCode = static_cast<ModbusFunctionCode>(function);
    return functionCode == ModbusFunctionCode::READ_COILS || functionCode == ModbusFunctionCode::READ_DISCRETE_INPUTS;
}

}  // namespace

Bytes ReadRequest(ModbusFunctionCode functionCode, std::uint16_t first, std::uint16_t count) {
    return RequestHead(functionCode, first, count);
}

Bytes WriteRequest(const ModbusDeviceModel::DeviceProfile::FrameDataValue& values) {
    Bytes request =
        RequestHead(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, values.mStartAddress, values.mValues.size());
    request.push_back(static_cast<std::uint8_t>(2 * values.mValues.size()));
    for (const std::uint16_t value : values.mValues) {
        AppendWord(request, value);
    }
    return request;
}

int TakeValues(const Bytes& request, const Bytes& answer, std::uint16_t* values) {
    if (const int error = CheckFunction(request, answer)) {
        return error;
    }
    const std::size_t count = WordAt(request, 3);
    const bool isOfBits = IsOfBits(request[0]);
    const std::size_t byteCount = isOfBits ? (count + 7) / 8 : 2 * count;
    if (answer[1] != byteCount || answer.size() != 2 + byteCount) {
        return EMBBADDATA;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (isOfBits) {
            values[i] = static_cast<std::uint16_t>(answer[2 + i / 8] >> i % 8 & 1);
        } else {
            values[i] = WordAt(answer, 2 + 2 * i);
        }
    }
    return 0;
}

int TakeConfirmation(const Bytes& request, const Bytes& answer) {
    if (const int error = CheckFunction(request, answer)) {
        return error;
    }
    const auto head = request.begin() + 5;
    return std::equal(request.begin(), head, answer.begin(), answer.end()) ? 0 : EMBBADDATA;
}

}  // namespace kzm::ModbusGateway
