#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "gateway/Export.h"
#include "gateway/modbus/ModbusConnection.h"

namespace kzm::ModbusGateway {

// Finds out by reading alone which registers of a device answer. Asks for blocks as large as the device accepts; where
// one is refused it looks for the first register that does not answer, then for the next one that does.
//
// To be sure of every missing register takes a request for each. A hole is therefore crossed in steps that double from
// 1 to 64 and then end at addresses that are multiples of 100, until a register answers. What was passed over is asked
// for afterwards, in short holes first, as long as there are requests left: one for each block of the largest size and
// REQUESTS_PER_HOLE for each hole. The rest stays NOT_ASKED; registers can hide there between two holes, fewer than
// those that are missing before them.
//
// A hole of up to 8 registers takes at most REQUESTS_PER_HOLE requests beside those for blocks that answer, two more
// each time that it is twice as long, and one for each 100 registers beyond 64. Logs nothing; used by one thread.
class RegisterProbe {
public:
    // 2 * log2(125) + 2, rounded down: both ends of a hole by bisection.
    static constexpr std::size_t REQUESTS_PER_HOLE = 15;

    // What is known of a register (or of a coil or discrete input).
    enum class State : std::uint8_t {
        UNKNOWN,    // not looked at yet
        NOT_ASKED,  // in a hole, taken for missing without a request of its own
        ANSWERED,   // read
        REFUSED,    // the device answers with an exception
        SILENT,     // the device does not answer
    };

    // One register. A plain record.
    struct Register {
        State state = State::UNKNOWN;  // what is known
        std::uint16_t value = 0;       // if it was read
        std::uint8_t exception = 0;    // that it was refused with, as ModbusConnection::Result says
    };

    // Sends one read request; `values` gets `count` registers when it is answered.
    using Ask =
        std::function<ModbusConnection::Result(std::uint16_t first, std::uint16_t count, std::uint16_t* values)>;

    // To probe the registers `first` to `last`, at least one. `most`: of a request, MaxReadCount of the function code.
    KZM_GATEWAY_EXPORT RegisterProbe(std::uint16_t first, std::uint16_t last, std::uint16_t most, Ask ask);

    // Tells what is known from before, so that it is not asked again: ANSWERED with a value, or REFUSED. Registers
    // outside the probed ones are ignored.
    KZM_GATEWAY_EXPORT void Know(std::uint16_t address, const Register& known);

    // Asks until all is known; `thorough`: each register in a hole by itself, without a limit of requests. The outcome
    // is ANSWERED at the end; STOPPED or UNREACHABLE as soon as `ask` returns one of these; NO_ANSWER if the device has
    // answered none of the first ten requests, or none at all; EXCEPTION if it does not know the function (exception
    // 1). What is found so far stays, and Run may be called again.
    KZM_GATEWAY_EXPORT ModbusConnection::Result Run(bool thorough = false);

    // By address, from the first one on.
    const std::vector<Register>& GetRegisters() const { return mRegisters; }
    // The most registers that one request was answered with; 0 if none was.
    std::uint16_t GetLargestRequest() const { return mLargest; }
    // The least that a request was refused for, although each of its registers answers; 0 if there was none.
    std::uint16_t GetRefusedSize() const { return mRefusedSize; }
    std::size_t GetRequestCount() const { return mRequests; }
    // How many registers are settled, for progress.
    KZM_GATEWAY_EXPORT std::size_t GetSettledCount() const;

private:
    // Places of registers among the probed ones; the end is not included.
    struct Span {
        std::size_t begin;
        std::size_t end;
    };

    void Sweep();
    std::size_t CrossHole(std::size_t hole);
    void LookAgain(bool thorough);
    void LookInto(Span hole, bool thorough);
    std::size_t FirstMissing(Span block);
    std::vector<Span> Holes() const;
    bool MayAsk() const;
    bool Answers(std::size_t place) { return Reads({place, place + 1}); }
    bool Reads(Span block);
    bool Request(Span block);
    void Settle(std::size_t place, State state, std::uint8_t exception);
    void GiveUpIfHopeless();
    void LearnLargest(Span block);

    std::uint16_t mFirst;
    std::size_t mMost;  // that is asked for at a time
    Ask mAsk;
    std::vector<Register> mRegisters;
    ModbusConnection::Result mLast{ModbusConnection::Outcome::ANSWERED, {}};
    std::uint16_t mLargest = 0;
    std::uint16_t mRefusedSize = 0;
    std::size_t mRequests = 0;
    std::size_t mHoles = 0;     // found so far
    bool mHasAnswered = false;  // with registers or an exception
};

}  // namespace kzm::ModbusGateway
