#pragma once

#include <cstdint>
#include <span>
#include <vector>

// Messages of Modbus TCP: transaction (2 bytes), protocol (2, always 0), length of what follows (2), unit (1), then
// function code and data. Words are sent high byte first.
namespace kzm::ModbusGateway {

using Bytes = std::vector<std::uint8_t>;

struct TcpMessage {
    static constexpr std::size_t LENGTH_END = 6;   // bytes that tell the size of the message
    static constexpr std::size_t HEADER_SIZE = 7;  // bytes before the function code

    // The size of the message that starts with these bytes, at least LENGTH_END; 0 if it is not Modbus TCP.
    static std::size_t SizeOf(std::span<const std::uint8_t> start);

    // `content`: function code and data, at most 253 bytes.
    static Bytes Make(std::uint16_t transaction, std::uint8_t unit, std::span<const std::uint8_t> content);
};

std::uint16_t WordAt(std::span<const std::uint8_t> bytes, std::size_t position);
void AppendWord(Bytes& bytes, std::size_t word);

}  // namespace kzm::ModbusGateway
