#include "gateway/modbus/Waiting.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kzm::ModbusGateway {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds STOP_LATENCY{50};

// Sockets would end the process where the other end is gone; serial ports are no sockets.
ssize_t Send(int descriptor, std::span<const std::uint8_t> bytes) {
    const ssize_t size = send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    return size < 0 && errno == ENOTSOCK ? write(descriptor, bytes.data(), bytes.size()) : size;
}

// Adds what was moved. 0, or an error number unless it is worth another try.
int Note(ssize_t moved, std::size_t& sum) {
    if (moved < 0) {
        return errno == EAGAIN || errno == EINTR ? 0 : errno;
    }
    sum += static_cast<std::size_t>(moved);
    return moved == 0 ? ECONNRESET : 0;
}

}  // namespace

milliseconds Patience::GetRest() const {
    const auto rest = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    return std::max(rest, milliseconds(0));
}

int WaitFor(int descriptor, short events, const Patience& patience) {
    while (!patience.IsStopped()) {
        const milliseconds rest = patience.GetRest();
        if (rest.count() == 0) {
            return ETIMEDOUT;
        }
        pollfd waiting{descriptor, events, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(std::min(rest, STOP_LATENCY).count()));
        if (ready > 0) {
            return 0;
        }
        if (ready < 0 && errno != EINTR) {
            return errno;
        }
    }
    return ECANCELED;
}

int SendAll(int descriptor, std::span<const std::uint8_t> bytes, const Patience& patience) {
    int error = 0;
    for (std::size_t sent = 0; error == 0 && sent < bytes.size();) {
        error = WaitFor(descriptor, POLLOUT, patience);
        if (error == 0) {
            error = Note(Send(descriptor, bytes.subspan(sent)), sent);
        }
    }
    return error;
}

int ReceiveUpTo(std::size_t size, int descriptor, std::vector<std::uint8_t>& bytes, const Patience& patience) {
    int error = 0;
    std::size_t received = bytes.size();
    bytes.resize(size);
    while (error == 0 && received < size) {
        error = WaitFor(descriptor, POLLIN, patience);
        if (error == 0) {
            error = Note(read(descriptor, bytes.data() + received, size - received), received);
        }
    }
    return error;
}

}  // namespace kzm::ModbusGateway
