#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>

namespace kzm::ModbusGateway {

struct TcpEndpoint {
    std::string host;
    std::uint16_t port = 502;
};

struct SerialPort {
    std::string device;  // e.g. "/dev/ttyUSB0"
    int baud = 19200;
    char parity = 'E';  // 'N', 'E' or 'O'; 8 data bits; 1 stop bit, 2 without parity
};

// How a device is reached, and how long to wait for it.
struct ModbusSettings {
    std::variant<TcpEndpoint, SerialPort> line;
    std::uint8_t unit = 1;  // 0 to 247 on a serial line, 255 for a TCP device without sub-devices
    // For a whole answer, and for connecting. Host names are looked up by the system, within times of its own.
    std::chrono::milliseconds timeout{1000};
    // The pause before a lost connection is opened again doubles from the first to the last of these.
    std::chrono::milliseconds firstPause{500};
    std::chrono::milliseconds longestPause{30000};
};

}  // namespace kzm::ModbusGateway
