#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "gateway/modbus/Waiting.h"

namespace kzm::ModbusGateway {

// Owns the descriptor of a socket, or none.
class Socket {
public:
    Socket() = default;
    explicit Socket(int descriptor) : mDescriptor(descriptor) {}
    ~Socket();
    Socket(Socket&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    Socket& operator=(Socket&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }

    int Get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }

private:
    int mDescriptor = -1;
};

// Listens for TCP connections, without blocking in accept; port 0 takes a free one. Throws std::system_error when the
// address cannot be listened on.
Socket ListenOn(const std::string& host, std::uint16_t port);

// Connects to each address of a host until one answers, none longer than the time-out; the host is looked up by the
// system, in a time of its own. 0, or an error number of the last address: of errno, where ETIMEDOUT says that it did
// not answer and ECANCELED that `stop` became true, or a negative one of getaddrinfo. `socket` then stays as it was;
// else it is the connection, without blocking in recv and send.
int ConnectTo(const std::string& host, std::uint16_t port, std::chrono::milliseconds timeout,
              const std::atomic<bool>* stop, Socket& socket);

// The next connection that waits, without blocking in recv; none when none does.
Socket AcceptFrom(const Socket& listener);

// The port that a socket is bound to.
std::uint16_t PortOf(const Socket& socket);

}  // namespace kzm::ModbusGateway
