#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusTool {

// What the registers of an element would be if the profile said something else of them.
struct OtherReading {
    nlohmann::json value;  // null: "no value", for a pattern of "not available"
    std::string change;    // the members of the profile's element that differ: `"order": "little"`
    std::string doubt;     // why it is implausible; empty if it may well be
};

// Why the value of an element is hardly what the device means, as a phrase; empty if it may well be. Looks at the bits
// of plain numbers, at their unit, and at masks that hide all that the device has set. `element`: with registers.
std::string DoubtOf(const ModbusGateway::Explanation& element, const std::string& unit);

// Other word orders and types, masks, scales, and the registers one before and after, each decoded by the library's own
// elements with the element's scale and offset; plausible ones first. None that gives the same value; nothing where no
// registers were received. Enumerations have their numbers, not their labels.
std::vector<OtherReading> OtherReadingsOf(const ModbusGateway::Explanation& element,
                                          const ModbusGateway::RegisterCache& cache, const std::string& unit);

}  // namespace kzm::ModbusTool
