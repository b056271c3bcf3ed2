#include "ShownObjects.h"

#include <iostream>

namespace kzm::ModbusTool {

void PrintJsonLines(const std::vector<ObjectReading>& readings, const std::string& time, bool raw) {
    for (const ObjectReading& reading : readings) {
        std::cout << ToJsonLine(reading, time, raw) << '\n';
    }
}

void PrintTable(const std::vector<ObjectReading>& readings, const std::string& time, const TableForm& form) {
    if (!time.empty()) {
        std::cout << time << '\n';
    }
    for (const std::string& line : TableOf(readings, form)) {
        std::cout << line << '\n';
    }
    std::cout << (time.empty() ? "" : "\n");
}

}  // namespace kzm::ModbusTool
