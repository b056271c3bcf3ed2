#pragma once

#include <cstdint>
#include <span>

#include "gateway/modbus/TcpMessage.h"

namespace kzm::ModbusGateway {

// Messages of Modbus RTU: unit (1 byte), function code and data, checksum (2, low byte first).
struct RtuMessage {
    static constexpr std::size_t SIZE_END = 3;  // bytes that tell the size of an answer
    static constexpr std::size_t HEADER_SIZE = 1;
    static constexpr std::size_t CHECKSUM_SIZE = 2;

    // The size of the answer that starts with these bytes, more than SIZE_END; 0 for a function code that is never
    // asked for, and for more bytes than an answer has.
    static std::size_t SizeOfAnswer(std::span<const std::uint8_t> start);

    static Bytes Make(std::uint8_t unit, std::span<const std::uint8_t> content);

    // `message` is longer than the checksum.
    static bool HasGoodChecksum(std::span<const std::uint8_t> message);
};

}  // namespace kzm::ModbusGateway
