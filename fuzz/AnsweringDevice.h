#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <deque>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include "fuzz/Input.h"
#include "gateway/modbus/Socket.h"

namespace kzm::ModbusFuzz {

// One answer of a device: a good one with these bytes as its data, or changed in some way.
struct Answer {
    enum class Kind { GOOD, CHANGED, ARBITRARY_DATA, EXCEPTION, ARBITRARY, NONE };

    explicit Answer(Input& input)
        : kind(TakeKind(input)), bytes(input.UpToBytes(40)), cutBy(input.ConsumeBool() ? input.UpTo(9U) : 0) {}

    Kind kind;
    Bytes bytes;
    std::size_t cutBy;

private:
    // Silence is slow, so it is rare.
    static Kind TakeKind(Input& input) {
        constexpr Kind KINDS[] = {Kind::GOOD,           Kind::GOOD,      Kind::CHANGED,  Kind::CHANGED,
                                  Kind::ARBITRARY_DATA, Kind::EXCEPTION, Kind::ARBITRARY};
        return input.UpTo(31) == 1 ? Kind::NONE : input.PickValueInArray(KINDS);
    }
};

// A Modbus device that gives the answers that it is told; on TCP it then closes the connection.
class AnsweringDevice {
public:
    enum class Line { TCP, SERIAL };

    explicit AnsweringDevice(Line line) : mIsSerial(line == Line::SERIAL) {
        if (mIsSerial) {
            OpenSerialLine();
        } else {
            mLine = ModbusGateway::ListenOn("127.0.0.1", 0);
        }
        mThread =
            std::jthread([this](const std::stop_token& stop) { mIsSerial ? Serve(mLine.Get(), stop) : Accept(stop); });
    }

    std::uint16_t GetPort() const { return ModbusGateway::PortOf(mLine); }
    std::string GetLineName() const { return mLineName.data(); }

    void Tell(std::deque<Answer> answers) {
        const std::lock_guard lock(mMutex);
        if (mIsSerial) {
            tcflush(mOtherEnd.Get(), TCIOFLUSH);  // what was left of the answers before
        }
        mAnswers = std::move(answers);
    }

private:
    // Raw, as an echo would be taken for a request; never waiting for a reader that takes no answers.
    void OpenSerialLine() {
        int device = -1;
        int otherEnd = -1;
        termios settings{};
        cfmakeraw(&settings);
        openpty(&device, &otherEnd, mLineName.data(), &settings, nullptr);
        fcntl(device, F_SETFL, O_NONBLOCK);
        mLine = ModbusGateway::Socket(device);
        mOtherEnd = ModbusGateway::Socket(otherEnd);
    }

    void Accept(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            pollfd waiting{mLine.Get(), POLLIN, 0};
            poll(&waiting, 1, 50);
            if (const ModbusGateway::Socket connection = ModbusGateway::AcceptFrom(mLine)) {
                Serve(connection.Get(), stop);
            }
        }
    }

    void Serve(int line, const std::stop_token& stop) {
        std::array<std::uint8_t, 256> request{};
        while (!stop.stop_requested()) {
            pollfd readable{line, POLLIN, 0};
            if (poll(&readable, 1, 50) <= 0) {
                continue;
            }
            const ssize_t size = read(line, request.data(), request.size());
            if (size < 0 && errno == EAGAIN) {
                continue;  // flushed meanwhile
            }
            if (size <= 0 || !AnswerTo(line, {request.begin(), request.begin() + size})) {
                return;
            }
        }
    }

    // False when the connection is to be closed.
    bool AnswerTo(int line, const Bytes& request) {
        const std::lock_guard lock(mMutex);
        if (mAnswers.empty() || request.size() < (mIsSerial ? 8 : 12)) {
            return mIsSerial;
        }
        const Answer answer = std::move(mAnswers.front());
        mAnswers.pop_front();
        Bytes bytes = mIsSerial ? SerialAnswer(answer, request) : TcpAnswer(answer, request);
        bytes.resize(bytes.size() - std::min(bytes.size(), answer.cutBy));
        if (!bytes.empty()) {
            [[maybe_unused]] const auto sent = mIsSerial ? write(line, bytes.data(), bytes.size())
                                                         : send(line, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        }
        return mIsSerial || (answer.cutBy == 0 && !mAnswers.empty());
    }

    static Bytes TcpAnswer(const Answer& answer, const Bytes& request) {
        Bytes bytes = UnitAndData(answer, request.data() + 6);
        const std::size_t size = bytes.size();
        bytes.insert(bytes.begin(), {request[0], request[1], 0, 0, static_cast<std::uint8_t>(size >> 8),
                                     static_cast<std::uint8_t>(size)});
        return Changed(answer, bytes);
    }

    static Bytes SerialAnswer(const Answer& answer, const Bytes& request) {
        Bytes bytes = UnitAndData(answer, request.data());
        unsigned checksum = 0xFFFF;
        for (const std::uint8_t byte : bytes) {
            checksum ^= byte;
            for (int bit = 0; bit < 8; ++bit) {
                checksum = (checksum >> 1) ^ ((checksum & 1) != 0 ? 0xA001U : 0U);
            }
        }
        bytes.push_back(static_cast<std::uint8_t>(checksum));
        bytes.push_back(static_cast<std::uint8_t>(checksum >> 8));
        return Changed(answer, bytes);
    }

    // `request`: unit, function code, first register, count.
    static Bytes UnitAndData(const Answer& answer, const std::uint8_t* request) {
        if (answer.kind == Answer::Kind::EXCEPTION) {
            return {request[0], static_cast<std::uint8_t>(request[1] | 0x80),
                    answer.bytes.empty() ? std::uint8_t{4} : answer.bytes[0]};
        }
        if (answer.kind == Answer::Kind::ARBITRARY_DATA) {
            Bytes bytes{request[0]};
            bytes.insert(bytes.end(), answer.bytes.begin(), answer.bytes.end());
            return bytes;
        }
        if (request[1] == 16) {
            return {request, request + 6};
        }
        const std::size_t count = static_cast<std::size_t>(request[4] << 8 | request[5]);
        Bytes data = answer.bytes;
        data.resize(request[1] <= 2 ? (count + 7) / 8 : 2 * count, 0xA5);
        data.insert(data.begin(), {request[0], request[1], static_cast<std::uint8_t>(data.size())});
        return data;
    }

    static Bytes Changed(const Answer& answer, Bytes bytes) {
        if (answer.kind == Answer::Kind::ARBITRARY) {
            return answer.bytes;
        }
        if (answer.kind == Answer::Kind::NONE) {
            return {};
        }
        for (std::size_t i = 0; answer.kind == Answer::Kind::CHANGED && i + 1 < answer.bytes.size(); i += 2) {
            std::uint8_t& byte = bytes[answer.bytes[i] % bytes.size()];
            byte = static_cast<std::uint8_t>(byte ^ answer.bytes[i + 1]);
        }
        return bytes;
    }

    bool mIsSerial;
    std::array<char, 64> mLineName{};
    ModbusGateway::Socket mLine;
    ModbusGateway::Socket mOtherEnd;
    std::mutex mMutex;
    std::deque<Answer> mAnswers;
    std::jthread mThread;
};

}  // namespace kzm::ModbusFuzz
