#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "ObjectSelection.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusTool {

using Cache = std::shared_ptr<ModbusGateway::RegisterCache>;

// What the device fills at the top of an object, or in one of its elements.
struct ObjectPart {
    std::string path;                                // of the element, e.g. "phase1"; empty at the top
    nlohmann::json attributes;                       // "value", "quality" and "datetime", those that are there
    std::string why = {};                            // why there is no value; empty if there is one
    std::string registers = {};                      // those read, in hexadecimal
    std::optional<std::int64_t> age = std::nullopt;  // of the oldest frame, in ms; none where no frame was received
};

// One object as the model filled it, and how it came about.
struct ObjectReading {
    const ModbusGateway::LoadedProfile::Object* object;
    ModbusGateway::Explanation explanation;
    nlohmann::json value;  // the whole object
    std::vector<ObjectPart> parts;
};

// Asks the model for each object of a selection. Numbers from the device are rounded to the precision of their element,
// so that each has its shortest form (0.1, not 0.10000000149011612), unless `exact`.
std::vector<ObjectReading> ReadObjects(const ModbusGateway::LoadedProfile& profile, const Selection& selection,
                                       const Cache& cache, bool exact);

// The object in one line: "name", "alias", "unit", "status", "value" (the whole object), "why" if a value is missing,
// what AddReason adds, and "time" unless that is empty. `raw`: with AddRaw.
std::string ToJsonLine(const ObjectReading& reading, const std::string& time, bool raw);

}  // namespace kzm::ModbusTool
