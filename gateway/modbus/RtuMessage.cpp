#include "gateway/modbus/RtuMessage.h"

#include <algorithm>

#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/modbus/RequestLimits.h"
#include "gateway/modbus/Requests.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;

namespace {

constexpr std::size_t EXCEPTION_SIZE = 5;
constexpr std::size_t CONFIRMATION_SIZE = 8;
constexpr std::size_t LONGEST = 256;

// CRC-16 with the reversed polynomial 0xA001.
std::uint16_t ChecksumOf(std::span<const std::uint8_t> bytes) {
    unsigned checksum = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        checksum ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            checksum = (checksum >> 1) ^ ((checksum & 1) * 0xA001U);
        }
    }
    return static_cast<std::uint16_t>(checksum);
}

}  // namespace

std::size_t RtuMessage::SizeOfAnswer(std::span<const std::uint8_t> start) {
    const auto functionCode = static_cast<ModbusFunctionCode>(start[1]);
    if ((start[1] & EXCEPTION_FLAG) != 0) {
        return EXCEPTION_SIZE;
    }
    if (functionCode == ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS) {
        return CONFIRMATION_SIZE;
    }
    const std::size_t size = SIZE_END + start[2] + CHECKSUM_SIZE;
    return MaxReadCount(functionCode) != 0 && size <= LONGEST ? size : 0;
}

Bytes RtuMessage::Make(std::uint8_t unit, std::span<const std::uint8_t> content) {
    Bytes message(1 + content.size());
    message.front() = unit;
    std::copy(content.begin(), content.end(), message.begin() + 1);
    const std::uint16_t checksum = ChecksumOf(message);
    message.push_back(static_cast<std::uint8_t>(checksum & 0xFF));
    message.push_back(static_cast<std::uint8_t>(checksum >> 8));
    return message;
}

bool RtuMessage::HasGoodChecksum(std::span<const std::uint8_t> message) {
    const std::size_t end = message.size() - CHECKSUM_SIZE;
    return ChecksumOf(message.first(end)) == (message[end] | message[end + 1] << 8);
}

}  // namespace kzm::ModbusGateway
