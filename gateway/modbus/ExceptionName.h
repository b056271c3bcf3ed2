#pragma once

#include <cstdint>
#include <string>

namespace kzm::ModbusGateway {

// An exception answer of a device by its number and name, as the errors of ModbusReader name it: `exception 2 (Illegal
// data address)`; a number without a name alone. Logs nothing; any thread.
inline std::string ExceptionName(std::uint8_t number) {
    constexpr const char* NAMES[] = {"",
                                     "Illegal function",
                                     "Illegal data address",
                                     "Illegal data value",
                                     "Slave device or server failure",
                                     "Acknowledge",
                                     "Slave device or server is busy",
                                     "Negative acknowledge",
                                     "Memory parity error",
                                     "",
                                     "Gateway path unavailable",
                                     "Target device failed to respond"};
    const std::string name = number < sizeof NAMES / sizeof *NAMES ? NAMES[number] : "";
    return "exception " + std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace kzm::ModbusGateway
