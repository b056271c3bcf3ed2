#pragma once

#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gateway/modbus/Socket.h"

namespace kzm::ModbusGateway {

// How a scripted device treats one request.
enum class Treatment { ANSWER, TWICE, EXCEPTION, CLOSE, LATE, TRUNCATED, TOO_FEW, MISFIT, MISFITS, GARBAGE };

// A device whose registers hold their own addresses. It treats the next requests as told and answers all later ones
// properly; it serves one connection at a time. MISFITS are sent for 3 s.
class ScriptedDevice {
public:
    explicit ScriptedDevice(std::uint16_t port)
        : mLine(ListenOn("127.0.0.1", port)), mThread([this](std::stop_token stop) { ServeTcp(stop); }) {}
    // At one end of a pseudo-terminal; `lateness` is the delay of a LATE answer.
    explicit ScriptedDevice(std::chrono::milliseconds lateness) : mIsSerial(true), mLateness(lateness) {
        int device = -1;
        int line = -1;
        openpty(&device, &line, mLineName.data(), nullptr, nullptr);
        mLine = Socket(device);
        mOtherEnd = Socket(line);  // kept open, so that the line is there before and after a reader has it
        mThread = std::jthread([this](std::stop_token stop) {
            while (AnswerOne(mLine.Get(), stop)) {
            }
        });
    }
    std::uint16_t GetPort() const { return PortOf(mLine); }
    std::string GetLineName() const { return mLineName.data(); }
    int GetOtherEnd() const { return mOtherEnd.Get(); }

    void Treat(std::deque<Treatment> next) {
        const std::lock_guard lock(mMutex);
        mNext = std::move(next);
        mRequestCount = 0;
    }
    std::size_t GetRequestCount() {
        const std::lock_guard lock(mMutex);
        return mRequestCount;
    }

private:
    using Bytes = std::vector<std::uint8_t>;

    void ServeTcp(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            pollfd waiting{mLine.Get(), POLLIN, 0};
            if (poll(&waiting, 1, 10) > 0) {
                const Socket connection = AcceptFrom(mLine);
                while (AnswerOne(connection.Get(), stop)) {
                }
            }
        }
    }

    bool AnswerOne(int line, const std::stop_token& stop) {
        const Bytes request = Receive(line, mIsSerial ? 8 : 12, stop);
        const Treatment treatment = request.empty() ? Treatment::CLOSE : NextTreatment();
        if (treatment == Treatment::CLOSE) {
            return false;
        }
        if (treatment == Treatment::LATE && mIsSerial) {
            std::this_thread::sleep_for(mLateness);
        } else if (treatment == Treatment::LATE) {
            Receive(line, 1, stop);  // until the client has given up
        }
        Bytes answer = mIsSerial ? SerialAnswer(request, treatment) : TcpAnswer(request, treatment);
        answer.resize(answer.size() - (treatment == Treatment::TRUNCATED ? 3 : 0));
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
        bool isSent = Send(line, answer);
        if (treatment == Treatment::TWICE) {
            isSent = Send(line, answer);
        }
        while (treatment == Treatment::MISFITS && isSent && !stop.stop_requested() &&
               std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            isSent = Send(line, answer);
        }
        return isSent;
    }

    bool Send(int line, const Bytes& bytes) const {
        return (mIsSerial ? write(line, bytes.data(), bytes.size())
                          : send(line, bytes.data(), bytes.size(), MSG_NOSIGNAL)) > 0;
    }

    // Empty when the connection is closed or the test ends.
    static Bytes Receive(int line, std::size_t size, const std::stop_token& stop) {
        Bytes bytes(size);
        for (std::size_t received = 0; received < size;) {
            pollfd readable{line, POLLIN, 0};
            const int ready = poll(&readable, 1, 10);
            const ssize_t got = ready > 0 ? read(line, bytes.data() + received, size - received) : 0;
            if (stop.stop_requested() || (ready > 0 && got <= 0)) {
                return {};
            }
            received += static_cast<std::size_t>(got);
        }
        return bytes;
    }

    Treatment NextTreatment() {
        const std::lock_guard lock(mMutex);
        ++mRequestCount;
        mNext.push_back(Treatment::ANSWER);
        const Treatment treatment = mNext.front();
        mNext.pop_front();
        return treatment;
    }

    static bool IsMisfit(Treatment treatment) {
        return treatment == Treatment::MISFIT || treatment == Treatment::MISFITS;
    }

    static Bytes TcpAnswer(const Bytes& request, Treatment treatment) {
        if (treatment == Treatment::GARBAGE) {
            return Bytes(300, 0xA5);
        }
        Bytes answer = UnitAndData(&request[6], treatment);
        const auto length = static_cast<std::uint8_t>(answer.size());
        const auto transaction = static_cast<std::uint8_t>(request[1] + (IsMisfit(treatment) ? 1 : 0));
        answer.insert(answer.begin(), {request[0], transaction, 0, 0, 0, length});
        return answer;
    }

    static Bytes SerialAnswer(const Bytes& request, Treatment treatment) {
        Bytes answer = UnitAndData(request.data(), treatment);
        unsigned checksum = 0xFFFF;
        for (const std::uint8_t byte : answer) {
            checksum ^= byte;
            for (int bit = 0; bit < 8; ++bit) {
                checksum = (checksum >> 1) ^ ((checksum & 1) != 0 ? 0xA001U : 0U);
            }
        }
        checksum += IsMisfit(treatment) ? 1 : 0;
        answer.push_back(static_cast<std::uint8_t>(checksum));
        answer.push_back(static_cast<std::uint8_t>(checksum >> 8));
        return answer;
    }

    static Bytes UnitAndData(const std::uint8_t* request, Treatment treatment) {
        if (treatment == Treatment::EXCEPTION) {
            return {request[0], static_cast<std::uint8_t>(request[1] | 0x80), 4};
        }
        const int first = request[2] << 8 | request[3];
        const int count = (request[4] << 8 | request[5]) - (treatment == Treatment::TOO_FEW ? 1 : 0);
        Bytes answer{request[0], request[1], static_cast<std::uint8_t>(2 * count)};
        for (int address = first; address < first + count; ++address) {
            answer.push_back(static_cast<std::uint8_t>(address >> 8));
            answer.push_back(static_cast<std::uint8_t>(address));
        }
        return answer;
    }

    bool mIsSerial = false;
    std::chrono::milliseconds mLateness{};
    std::array<char, 64> mLineName{};
    Socket mLine;
    Socket mOtherEnd;
    std::mutex mMutex;
    std::deque<Treatment> mNext;
    std::size_t mRequestCount = 0;
    std::jthread mThread;
};

}  // namespace kzm::ModbusGateway
