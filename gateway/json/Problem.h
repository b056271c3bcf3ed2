#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// Something wrong with a device profile or a capture.
struct Problem {
    enum class Severity { ERROR, WARNING };

    Severity severity = Severity::ERROR;
    std::size_t line = 0;  // from 1 on
    std::string pointer;   // JSON pointer (RFC 6901) to the faulty value; "" is the whole document
    std::string message;   // what is wrong, and what is allowed
};

using Problems = std::vector<Problem>;

// Whether one of them is an error.
KZM_GATEWAY_EXPORT bool HasError(const Problems& problems);

// Puts them into the order of the lines, each once.
KZM_GATEWAY_EXPORT void SortByLine(Problems& problems);

}  // namespace kzm::ModbusGateway
