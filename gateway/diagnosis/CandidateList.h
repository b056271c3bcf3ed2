#pragma once

#include <map>
#include <utility>

#include "gateway/diagnosis/Guess.h"
#include "gateway/diagnosis/OrderModel.h"
#include "gateway/diagnosis/SignHabits.h"

namespace kzm::ModbusGateway {

// What may begin at each register: the spans of both orders, each as unsigned and as signed, with a scale.
class CandidateLists {
public:
    explicit CandidateLists(const Expectations& expectations) : mExpectations(expectations) {}

    // `share`: how probable the order of the model is.
    void Add(const OrderModel& model, double share);
    // Coils and discrete inputs.
    void AddBits(const RegisterRun& run);
    std::vector<Guess::Value> GetValues();

private:
    using Place = std::pair<std::uint8_t, std::uint16_t>;  // function and address

    // A span in the making of its candidates.
    struct Reading {
        const RegisterRun& run;
        const ValueSpan& span;
        WordOrder order;
        const SignHabits& signs;
        double signedShare = 0;  // how probable it is that the number is signed
        Guess::Candidate candidate;
    };

    void AddSpan(Reading& reading);
    void AddInteger(Reading& reading);
    void Expect(Reading& reading) const;
    void AddCandidate(const Reading& reading);

    const Expectations& mExpectations;
    std::map<Place, std::vector<Guess::Candidate>> mLists;
};

// The values that together take each register once and are the most probable.
std::vector<Guess::Choice> DivisionOf(const std::vector<Guess::Value>& values);

}  // namespace kzm::ModbusGateway
