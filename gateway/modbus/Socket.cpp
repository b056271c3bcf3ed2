#include "gateway/modbus/Socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace kzm::ModbusGateway {

namespace {

Socket ListenOn(const addrinfo& address) {
    Socket socket(::socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol));
    const int on = 1;
    if (socket && setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
        bind(socket.Get(), address.ai_addr, address.ai_addrlen) == 0 && listen(socket.Get(), SOMAXCONN) == 0) {
        return socket;
    }
    return Socket();
}

}  // namespace

Socket::~Socket() {
    if (mDescriptor >= 0) {
        close(mDescriptor);
    }
}

Socket ListenOn(const std::string& host, std::uint16_t port) {
    const std::string name = host + ":" + std::to_string(port);
    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    const int error = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &addresses);
    if (error != 0) {
        throw std::system_error(std::make_error_code(std::errc::address_not_available),
                                name + ": " + gai_strerror(error));
    }
    Socket socket;
    for (const addrinfo* address = addresses; address != nullptr && !socket; address = address->ai_next) {
        socket = ListenOn(*address);
    }
    const int listenError = errno;
    freeaddrinfo(addresses);
    if (!socket) {
        throw std::system_error(listenError, std::generic_category(), name);
    }
    return socket;
}

std::uint16_t PortOf(const Socket& socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    std::array<char, NI_MAXSERV> port{};
    getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    getnameinfo(reinterpret_cast<sockaddr*>(&address), size, nullptr, 0, port.data(), port.size(), NI_NUMERICSERV);
    return static_cast<std::uint16_t>(std::stoul(port.data()));
}

Socket AcceptFrom(const Socket& listener) {
    return Socket(accept4(listener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

}  // namespace kzm::ModbusGateway
