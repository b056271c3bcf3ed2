#include "gateway/modbus/RegisterProbe.h"

#include <modbus/modbus.h>

#include <algorithm>
#include <utility>

namespace kzm::ModbusGateway {

namespace {

using Outcome = ModbusConnection::Outcome;
using Result = ModbusConnection::Result;

constexpr std::size_t UNANSWERED_REQUESTS = 10;  // after which a device is given up that has answered none
constexpr std::size_t LONGEST_STEP = 64;         // that is doubled from 1 in a hole
constexpr std::size_t STRIDE = 100;              // beyond it: onto addresses where devices begin

// Leaves the search.
struct Ended {
    Result result;
};

// A gateway answers so for a device that does not.
bool IsSilence(const Result& result) {
    return result.outcome != Outcome::EXCEPTION || result.exception == MODBUS_EXCEPTION_GATEWAY_PATH ||
           result.exception == MODBUS_EXCEPTION_GATEWAY_TARGET;
}

}  // namespace

RegisterProbe::RegisterProbe(std::uint16_t first, std::uint16_t last, std::uint16_t most, Ask ask)
    : mFirst(first), mMost(most), mAsk(std::move(ask)), mRegisters(std::size_t{last} - first + 1) {}

void RegisterProbe::Know(std::uint16_t address, const Register& known) {
    if (address >= mFirst && address - mFirst < static_cast<int>(mRegisters.size())) {
        mRegisters[static_cast<std::size_t>(address - mFirst)] = known;
    }
}

Result RegisterProbe::Run(bool thorough) try {
    Sweep();
    LookAgain(thorough);
    return mHasAnswered || mRequests == 0 ? Result{Outcome::ANSWERED, {}} : Result{Outcome::NO_ANSWER, mLast.reason};
} catch (const Ended& ended) {
    return ended.result;
}

std::size_t RegisterProbe::GetSettledCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(mRegisters, [](const Register& each) { return each.state != State::UNKNOWN; }));
}

void RegisterProbe::Sweep() {
    for (std::size_t place = 0; place < mRegisters.size();) {
        Span block{place, place};
        while (block.end < mRegisters.size() && block.end - place < mMost &&
               mRegisters[block.end].state == State::UNKNOWN) {
            ++block.end;
        }
        if (block.end == place) {
            ++place;
        } else if (!Reads(block)) {
            const std::size_t missing = FirstMissing(block);
            place = missing == block.end ? place : CrossHole(missing);
        }
    }
}

// The place of the first register of a refused block that does not answer; its end if all of them do, so that it was
// only too large.
std::size_t RegisterProbe::FirstMissing(Span block) {
    Span refused = block;
    Result why = mLast;
    std::size_t begin = block.begin;  // all before it answer
    while (begin < refused.end) {
        const std::size_t left = refused.end - begin;
        if (left == 1 && !IsSilence(why) && refused.end - refused.begin <= mLargest) {
            Settle(begin, State::REFUSED, why.exception);
        }
        if (left == 1 && mRegisters[begin].state != State::UNKNOWN) {
            return begin;
        }
        const Span half{begin, begin + std::max<std::size_t>(left / 2, 1)};
        if (Reads(half)) {
            begin = half.end;
        } else {
            refused = half;
            why = mLast;
        }
    }
    LearnLargest(refused);
    return block.end;
}

// Learns the largest request from one that was refused although all its registers answer.
void RegisterProbe::LearnLargest(Span block) {
    std::size_t refused = block.end - block.begin;
    if (refused <= mLargest || Request(block)) {
        return;  // an answer was lost
    }
    while (refused - mLargest > 1) {
        const std::size_t count = (refused + mLargest) / 2;
        if (!Request({block.begin, block.begin + count})) {
            refused = count;
        }
    }
    mMost = mLargest;
    mRefusedSize = static_cast<std::uint16_t>(refused);
}

// The place of the next register found that answers after a missing one.
std::size_t RegisterProbe::CrossHole(std::size_t hole) {
    ++mHoles;
    std::size_t missing = hole;
    std::size_t good = mRegisters.size();
    for (std::size_t step = 1; missing + 1 < good; step *= step > LONGEST_STEP ? 1 : 2) {
        const std::size_t address = mFirst + missing + 1 + STRIDE - 1;
        const std::size_t next = step <= LONGEST_STEP ? hole + step : address - address % STRIDE - mFirst;
        const std::size_t place = std::min(next, mRegisters.size() - 1);
        (Answers(place) ? good : missing) = place;
        if (good == place) {
            break;
        }
    }
    while (good < mRegisters.size() && good - missing > 1) {
        const std::size_t middle = missing + (good - missing) / 2;
        (Answers(middle) ? good : missing) = middle;
    }
    for (std::size_t place = hole; place < good; ++place) {
        if (mRegisters[place].state == State::UNKNOWN) {
            mRegisters[place].state = State::NOT_ASKED;
        }
    }
    return good;
}

std::vector<RegisterProbe::Span> RegisterProbe::Holes() const {
    std::vector<Span> holes;
    for (std::size_t place = 0; place < mRegisters.size(); ++place) {
        if (mRegisters[place].state == State::ANSWERED) {
            continue;
        }
        if (holes.empty() || holes.back().end != place) {
            holes.push_back({place, place});
        }
        holes.back().end = place + 1;
    }
    return holes;
}

bool RegisterProbe::MayAsk() const {
    const std::size_t blocks = (mRegisters.size() + mMost - 1) / mMost;
    return mRequests < blocks + mHoles * REQUESTS_PER_HOLE;
}

// Short holes first: what is left over then is in few, long ones.
void RegisterProbe::LookAgain(bool thorough) {
    std::vector<Span> holes = Holes();
    std::ranges::stable_sort(holes, {}, [](const Span& hole) { return hole.end - hole.begin; });
    for (const Span& hole : holes) {
        LookInto(hole, thorough);
    }
}

void RegisterProbe::LookInto(Span hole, bool thorough) {
    for (std::size_t place = hole.begin; place < hole.end; ++place) {
        if (mRegisters[place].state != State::NOT_ASKED || !(thorough || MayAsk()) || !Answers(place)) {
            continue;
        }
        ++mHoles;  // this one has become two
        for (std::size_t before = place; before-- > hole.begin && mRegisters[before].state == State::NOT_ASKED;) {
            if (!Answers(before)) {
                break;
            }
        }
        while (place + 1 < hole.end && Answers(place + 1)) {
            ++place;
        }
    }
}

bool RegisterProbe::Reads(Span block) {
    const auto begin = mRegisters.begin() + static_cast<std::ptrdiff_t>(block.begin);
    const auto end = mRegisters.begin() + static_cast<std::ptrdiff_t>(block.end);
    if (std::all_of(begin, end, [](const Register& each) { return each.state == State::ANSWERED; })) {
        return true;
    }
    if (std::any_of(begin, end, [](const Register& each) { return each.state >= State::REFUSED; })) {
        return false;
    }
    if (Request(block)) {
        return true;
    }
    const bool single = block.end - block.begin == 1;
    if (single && IsSilence(mLast) && Request(block)) {
        return true;  // an answer was lost
    }
    if (single) {
        Settle(block.begin, IsSilence(mLast) ? State::SILENT : State::REFUSED, mLast.exception);
    }
    return false;
}

bool RegisterProbe::Request(Span block) {
    const std::size_t count = block.end - block.begin;
    std::vector<std::uint16_t> values(count);
    const auto first = static_cast<std::uint16_t>(mFirst + block.begin);
    mLast = mAsk(first, static_cast<std::uint16_t>(count), values.data());
    ++mRequests;
    if (mLast.outcome == Outcome::STOPPED || mLast.outcome == Outcome::UNREACHABLE) {
        throw Ended{mLast};
    }
    if (mLast.outcome != Outcome::ANSWERED) {
        GiveUpIfHopeless();
        return false;
    }
    mHasAnswered = true;
    mLargest = std::max(mLargest, static_cast<std::uint16_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        mRegisters[block.begin + i] = {State::ANSWERED, values[i]};
    }
    return true;
}

void RegisterProbe::GiveUpIfHopeless() {
    if (mLargest == 0 && mLast.exception == MODBUS_EXCEPTION_ILLEGAL_FUNCTION) {
        throw Ended{mLast};
    }
    mHasAnswered = mHasAnswered || !IsSilence(mLast);
    if (!mHasAnswered && mRequests >= UNANSWERED_REQUESTS) {
        throw Ended{{Outcome::NO_ANSWER, mLast.reason}};
    }
}

void RegisterProbe::Settle(std::size_t place, State state, std::uint8_t exception) {
    mRegisters[place] = {state, 0, exception};
}

}  // namespace kzm::ModbusGateway
