#pragma once

#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "gateway/Socket.h"

namespace kzm::ModbusGateway {

// How a scripted device treats one request.
enum class Treatment { ANSWER, EXCEPTION, CLOSE, LATE, TRUNCATED, TOO_FEW, OTHER_TRANSACTION, BAD_CHECKSUM, GARBAGE };

// A device whose registers hold their own addresses, and which treats the next requests as it is told to, later ones
// well. It serves one connection at a time.
class ScriptedDevice {
public:
    using Bytes = std::vector<std::uint8_t>;

    void Treat(std::deque<Treatment> next) {
        const std::lock_guard lock(mMutex);
        mNext = std::move(next);
    }
    std::size_t GetRequestCount() const { return mRequestCount; }

protected:
    // Starts with the unit, ends with the data.
    static Bytes AnswerTo(const Bytes& request, Treatment treatment) {
        const std::uint8_t unit = request[0];
        const std::uint8_t function = request[1];
        if (treatment == Treatment::EXCEPTION) {
            return {unit, static_cast<std::uint8_t>(function | 0x80), 4};
        }
        const int first = request[2] << 8 | request[3];
        const int count = (request[4] << 8 | request[5]) - (treatment == Treatment::TOO_FEW ? 1 : 0);
        Bytes answer{unit, function, static_cast<std::uint8_t>(2 * count)};
        for (int address = first; address < first + count; ++address) {
            answer.push_back(static_cast<std::uint8_t>(address >> 8));
            answer.push_back(static_cast<std::uint8_t>(address));
        }
        return answer;
    }

    Treatment NextTreatment() {
        const std::lock_guard lock(mMutex);
        ++mRequestCount;
        if (mNext.empty()) {
            return Treatment::ANSWER;
        }
        const Treatment treatment = mNext.front();
        mNext.pop_front();
        return treatment;
    }

    // Empty when the connection was closed or the test ends.
    Bytes Receive(int descriptor, std::size_t size) const {
        Bytes bytes(size);
        std::size_t received = 0;
        while (received < size && !mStop) {
            pollfd readable{descriptor, POLLIN, 0};
            if (poll(&readable, 1, 10) > 0) {
                const ssize_t got = read(descriptor, bytes.data() + received, size - received);
                if (got <= 0) {
                    break;
                }
                received += static_cast<std::size_t>(got);
            }
        }
        return received == size ? bytes : Bytes{};
    }

    // To be called by the destructor of what uses the thread.
    void Join() {
        mStop = true;
        mThread.join();
    }

    std::atomic<bool> mStop = false;
    std::thread mThread;

private:
    std::mutex mMutex;
    std::deque<Treatment> mNext;
    std::atomic<std::size_t> mRequestCount = 0;
};

class ScriptedTcpDevice : public ScriptedDevice {
public:
    explicit ScriptedTcpDevice(std::uint16_t port = 0) : mListener(ListenOn("127.0.0.1", port)) {
        mThread = std::thread([this] { Serve(); });
    }
    ~ScriptedTcpDevice() { Join(); }
    std::uint16_t GetPort() const { return PortOf(mListener); }

private:
    void Serve() {
        while (!mStop) {
            pollfd waiting{mListener.Get(), POLLIN, 0};
            if (poll(&waiting, 1, 10) > 0) {
                const Socket connection = AcceptFrom(mListener);
                while (AnswerOne(connection.Get())) {
                }
            }
        }
    }

    bool AnswerOne(int connection) {
        Bytes request = Receive(connection, 12);
        if (request.empty()) {
            return false;
        }
        const Treatment treatment = NextTreatment();
        if (treatment == Treatment::LATE) {
            Receive(connection, 1);  // until the client has given up
        }
        Bytes answer = AnswerTo(Bytes(request.begin() + 6, request.end()), treatment);
        const auto length = static_cast<std::uint8_t>(answer.size());
        const auto transaction = static_cast<std::uint8_t>(request[1] + (treatment == Treatment::OTHER_TRANSACTION));
        answer.insert(answer.begin(), {request[0], transaction, 0, 0, 0, length});
        if (treatment == Treatment::TRUNCATED) {
            answer.resize(answer.size() - 3);
        } else if (treatment == Treatment::GARBAGE) {
            answer.assign(300, 0xA5);
        }
        return treatment != Treatment::CLOSE && send(connection, answer.data(), answer.size(), MSG_NOSIGNAL) > 0;
    }

    Socket mListener;
};

// At one end of a pseudo terminal.
class ScriptedRtuDevice : public ScriptedDevice {
public:
    explicit ScriptedRtuDevice(std::chrono::milliseconds lateness) : mLateness(lateness) {
        std::array<char, 64> name{};
        if (openpty(&mDevice, &mLine, name.data(), nullptr, nullptr) != 0) {
            throw std::runtime_error("no pseudo terminal");
        }
        mLineName = name.data();
        mThread = std::thread([this] { Serve(); });
    }
    ~ScriptedRtuDevice() {
        Join();
        close(mDevice);
        close(mLine);
    }
    const std::string& GetLineName() const { return mLineName; }

private:
    void Serve() {
        for (Bytes request = Receive(mDevice, 8); !request.empty(); request = Receive(mDevice, 8)) {
            const Treatment treatment = NextTreatment();
            if (treatment == Treatment::LATE) {
                std::this_thread::sleep_for(mLateness);
            }
            Bytes answer = AnswerTo(request, treatment);
            const unsigned checksum = Checksum(answer) + (treatment == Treatment::BAD_CHECKSUM ? 1 : 0);
            answer.push_back(static_cast<std::uint8_t>(checksum));
            answer.push_back(static_cast<std::uint8_t>(checksum >> 8));
            if (write(mDevice, answer.data(), answer.size()) < 0) {
                return;
            }
        }
    }

    static unsigned Checksum(const Bytes& bytes) {
        unsigned sum = 0xFFFF;
        for (const std::uint8_t byte : bytes) {
            sum ^= byte;
            for (int bit = 0; bit < 8; ++bit) {
                sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xA001U : 0U);
            }
        }
        return sum;
    }

    std::chrono::milliseconds mLateness;
    int mDevice = -1;
    int mLine = -1;  // kept open, so that the line is there before and after the reader has it
    std::string mLineName;
};

}  // namespace kzm::ModbusGateway
