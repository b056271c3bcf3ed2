#include "StopSignal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace kzm::ModbusTool {

namespace {

std::atomic<bool> gStopped{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

// The read end becomes readable with the first signal and stays so: nobody reads it.
int gPipe[2] = {-1, -1};

void HandleSignal(int) {
    const int error = errno;
    gStopped = true;
    [[maybe_unused]] const ssize_t ignored = write(gPipe[1], "", 1);
    errno = error;
}

}  // namespace

StopSignal::StopSignal() {
    if (pipe2(gPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    struct sigaction action {};
    action.sa_handler = HandleSignal;  // without SA_RESTART, so that waiting calls return
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

StopSignal::~StopSignal() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    close(gPipe[0]);
    close(gPipe[1]);
}

const std::atomic<bool>& StopSignal::GetFlag() const {
    return gStopped;
}

bool StopSignal::WaitUntil(std::chrono::steady_clock::time_point deadline) const {
    while (!gStopped) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            break;
        }
        pollfd stop{gPipe[0], POLLIN, 0};
        poll(&stop, 1, static_cast<int>(std::min<std::int64_t>(left.count(), 3'600'000)));
    }
    return gStopped;
}

}  // namespace kzm::ModbusTool
