#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>

namespace kzm::ModbusGateway {

// Where a Modbus TCP device, or a gateway to serial devices, listens.
struct TcpEndpoint {
    std::string host;          // a name or an address
    std::uint16_t port = 502;  // of TCP
};

// The serial port of a Modbus RTU line: 8 data bits, 1 stop bit with parity and 2 without.
struct SerialPort {
    std::string device;  // e.g. "/dev/ttyUSB0"
    int baud = 19200;    // bits per second: 110, 300, 600, 1200, ..., 115200, ..., 4000000, as Linux knows them
    char parity = 'E';   // 'N', 'E' or 'O'
};

// How one device is reached, and how long to wait for it. Plain values; which of them are possible is checked by
// whoever takes them (ModbusConnection, ModbusReader).
struct ModbusSettings {
    std::variant<TcpEndpoint, SerialPort> line;  // over TCP, or over a serial line
    std::uint8_t unit = 1;                       // 0 to 247, on TCP also 255: a device without sub-devices
    // For a whole answer, and for connecting to each address of the host; below 1 ms everything times out. Host names
    // are looked up by the system, in a time of its own.
    std::chrono::milliseconds timeout{1000};
    // After a failure to connect, the next attempt waits for the first pause; the pause doubles with each further
    // failure up to the longest.
    std::chrono::milliseconds firstPause{500};
    std::chrono::milliseconds longestPause{30000};
};

}  // namespace kzm::ModbusGateway
