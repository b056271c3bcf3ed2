#include "gateway/modbus/TcpMessage.h"

namespace kzm::ModbusGateway {

namespace {

// Of unit, function code and data.
constexpr std::size_t SHORTEST_LENGTH = 2;
constexpr std::size_t LONGEST_LENGTH = 254;

}  // namespace

std::uint16_t WordAt(std::span<const std::uint8_t> bytes, std::size_t position) {
    return static_cast<std::uint16_t>(bytes[position] << 8 | bytes[position + 1]);
}

void AppendWord(Bytes& bytes, std::size_t word) {
    bytes.push_back(static_cast<std::uint8_t>(word >> 8 & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

std::size_t TcpMessage::SizeOf(std::span<const std::uint8_t> start) {
    const std::size_t length = WordAt(start, 4);
    const bool isModbus = WordAt(start, 2) == 0 && length >= SHORTEST_LENGTH && length <= LONGEST_LENGTH;
    return isModbus ? LENGTH_END + length : 0;
}

Bytes TcpMessage::Make(std::uint16_t transaction, std::uint8_t unit, std::span<const std::uint8_t> content) {
    Bytes message;
    AppendWord(message, transaction);
    AppendWord(message, 0);
    AppendWord(message, content.size() + 1);
    message.push_back(unit);
    message.insert(message.end(), content.begin(), content.end());
    return message;
}

}  // namespace kzm::ModbusGateway
