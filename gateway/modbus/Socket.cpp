#include "gateway/modbus/Socket.h"

#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

namespace kzm::ModbusGateway {

namespace {

struct FreeAddresses {
    void operator()(addrinfo* addresses) const { freeaddrinfo(addresses); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// 0, or an error number of getaddrinfo.
int LookUp(const std::string& host, std::uint16_t port, int flags, Addresses& addresses) {
    addrinfo hints{};
    hints.ai_flags = flags;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    addresses.reset(error == 0 ? found : nullptr);
    return error;
}

Socket SocketFor(const addrinfo& address) {
    return Socket(::socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol));
}

int ConnectTo(const addrinfo& address, const Patience& patience, Socket& socket) {
    Socket connecting = SocketFor(address);
    if (!connecting) {
        return errno;
    }
    if (connect(connecting.Get(), address.ai_addr, address.ai_addrlen) != 0) {
        int error = errno;
        socklen_t size = sizeof error;
        if (error == EINPROGRESS) {
            error = WaitFor(connecting.Get(), POLLOUT, patience);
        }
        if (error != 0 || getsockopt(connecting.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
            return error;
        }
    }
    const int on = 1;
    setsockopt(connecting.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    socket = std::move(connecting);
    return 0;
}

Socket ListenOn(const addrinfo& address) {
    Socket socket = SocketFor(address);
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
    Addresses addresses;
    if (const int error = LookUp(host, port, AI_PASSIVE, addresses)) {
        throw std::system_error(std::make_error_code(std::errc::address_not_available),
                                name + ": " + gai_strerror(error));
    }
    Socket socket;
    for (const addrinfo* address = addresses.get(); address != nullptr && !socket; address = address->ai_next) {
        socket = ListenOn(*address);
    }
    if (!socket) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    return socket;
}

int ConnectTo(const std::string& host, std::uint16_t port, std::chrono::milliseconds timeout,
              const std::atomic<bool>* stop, Socket& socket) {
    Addresses addresses;
    int error = LookUp(host, port, 0, addresses);
    for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next) {
        error = ConnectTo(*address, {std::chrono::steady_clock::now() + timeout, stop}, socket);
        if (error == 0 || error == ECANCELED) {
            break;
        }
    }
    return error;
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
