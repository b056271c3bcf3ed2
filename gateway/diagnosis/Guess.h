#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "gateway/Export.h"
#include "gateway/capture/Capture.h"

namespace kzm::ModbusGateway {

// A number that the device's display shows, and where it is among the registers.
struct KZM_GATEWAY_EXPORT Expectation {
    std::uint16_t address = 0;  // of the value's first register, of whatever function has it
    double value = 0;           // in the unit of the display
    double tolerance = 0;       // half a unit of the last digit that is shown

    // Reads "6=230.4"; the address also as "0x0006". Throws std::invalid_argument with what is wrong.
    static Expectation Parse(const std::string& text);
};
// In any order, one for each address.
using Expectations = std::vector<Expectation>;

// What the registers of a device may hold, if nothing is known of it but a capture: types, word order and scales,
// ranked. A value type. Nothing of it logs; any number of threads.
struct KZM_GATEWAY_EXPORT Guess {
    // One way to read the registers from an address on.
    struct Candidate {
        std::string type;           // as profiles name it; "datetime-..." also for dates that profiles cannot say
        std::uint16_t count = 1;    // registers
        std::string order;          // "big" or "little"; empty for one register
        double scale = 1;           // value = raw * scale + offset, in the value's unit
        double offset = 0;          // in the value's unit
        bool isInvalid = false;     // the registers hold a usual pattern of "not available"
        double probability = 0;     // that such a value is there, 0 to 1
        nlohmann::json value = {};  // in the first snapshot; null if there is none
    };

    // What may begin at a register, the most probable first; at most six, none below 0.0001.
    struct Value {
        std::uint8_t function = 3;               // the number of the Modbus function, 1 to 4
        std::uint16_t address = 0;               // of the first register
        std::vector<Candidate> candidates = {};  // what may be there
    };

    // One candidate of one value, by their positions in the lists.
    struct Choice {
        std::size_t value = 0;      // in `values`
        std::size_t candidate = 0;  // in its candidates
    };

    std::string order;                  // of the device's words: "big", "little", or empty for undecided
    std::vector<std::string> evidence;  // for the order, and for what was expected; phrases
    std::vector<Value> values;          // one for each register, by function and address
    std::vector<Choice> division;       // the most probable values that together take each register once

    // Looks at all snapshots; a frame that is Bad in one of them is left out there. Throws std::invalid_argument if an
    // expectation is outside the capture, or two are of one address. Takes about 0.1 s for 1000 registers.
    static Guess Of(const Capture& capture, const Expectations& expectations = {});

    // {"order", "evidence", "values": [{"function", "address", "candidates": [{"type", "count", "order", "scale",
    // "offset", "invalid", "probability", "value"}]}]}; an undecided order and that of one register are null.
    nlohmann::json ToJson() const;
};

}  // namespace kzm::ModbusGateway
