#pragma once

#include <string>
#include <vector>

#include "TextTable.h"
#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusTool {

// How explanations are shown.
struct TreeForm {
    std::string profile;  // the path of the profile; its name and a line tell where a step comes from
    bool all = false;     // a line for each step that changes nothing, too
};

// An explanation as rows of a table: what it is, what came of it, where the profile says so. Each part has a heading,
// below it those that it asked, indented, then its own steps. The step that decides is in the style FAULT.
std::vector<Row> TreeOf(const ModbusGateway::Explanation& explanation, const std::string& heading,
                        const TreeForm& form);

// "holding 1006-1007".
std::string AddressesOf(const ModbusGateway::Explanation::Registers& registers);

}  // namespace kzm::ModbusTool
