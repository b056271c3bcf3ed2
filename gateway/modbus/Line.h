#pragma once

#include <memory>
#include <string>

#include "gateway/modbus/ModbusSettings.h"
#include "gateway/modbus/TcpMessage.h"
#include "gateway/modbus/Waiting.h"

namespace kzm::ModbusGateway {

// What requests and answers travel on: a TCP connection or a serial line, for one request at a time. Used by one
// thread. What can fail gives 0 or an error number, of which TextOf knows the text: one of errno, where ECANCELED says
// that the caller's flag became true, one of libmodbus, or a negative one of getaddrinfo.
class Line {
public:
    virtual ~Line() = default;

    // "192.0.2.1:502" or "/dev/ttyUSB0".
    virtual std::string GetName() const = 0;

    virtual bool IsOpen() const = 0;
    virtual int Open(std::chrono::milliseconds timeout, const std::atomic<bool>* stop) = 0;
    virtual void Close() = 0;

    // Sends a request (function code and data) to a unit of the open line and waits for the answer, which is checked
    // for damage but not for its content. After a failure `answer` holds anything.
    virtual int Ask(std::uint8_t unit, const Bytes& request, const Patience& patience, Bytes& answer) = 0;

    // To be called when Ask failed, or its answer did not fit: makes sure that nothing which still comes for that
    // request is taken for the answer to the next one. Closes the line, or waits up to the time-out.
    virtual void Recover(int error, std::chrono::milliseconds timeout, const std::atomic<bool>* stop) = 0;
};

// Opens nothing yet. Throws std::invalid_argument for an empty host or device, a baud rate or a parity that does not
// exist.
std::unique_ptr<Line> MakeLine(const TcpEndpoint& endpoint);
std::unique_ptr<Line> MakeLine(const SerialPort& port);

// Whether the line itself failed, rather than that no answer or none that fits came in time.
bool IsLost(int error);

std::string TextOf(int error);

}  // namespace kzm::ModbusGateway
