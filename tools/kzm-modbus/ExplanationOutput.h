#pragma once

#include "AlarmReading.h"
#include "ExplanationTree.h"
#include "ObjectTable.h"
#include "Source.h"

// Explanations on standard output.
namespace kzm::ModbusTool {

// Each as a tree, with what else doubtful or missing values would be; then all of them as the command show prints
// them, then their reasons.
void PrintExplanations(const std::vector<ObjectReading>& readings, const Moment& moment,
                       const ModbusGateway::RegisterCache& cache, const TreeForm& form);
void PrintExplanation(const AlarmReading& reading, const Moment& moment, const ModbusGateway::RegisterCache& cache,
                      const TreeForm& form);

// One JSON object in one line: Explanation::ToJson, "profile" (its path), "shown" (the line of `show --json` or `alarms
// --json`), and "otherwise": for each element of which the value is doubtful or missing, "role", "doubt" and
// "readings", each with "value", "change" and "doubt".
void PrintExplanationJson(const ObjectReading& reading, const Moment& moment, const ModbusGateway::RegisterCache& cache,
                          const TreeForm& form);
void PrintExplanationJson(const AlarmReading& reading, const Moment& moment, const ModbusGateway::RegisterCache& cache,
                          const TreeForm& form);

}  // namespace kzm::ModbusTool
