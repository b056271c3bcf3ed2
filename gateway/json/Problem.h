#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// Something wrong with a document: a device profile, a capture, or the settings of a chain.
//
// Errors of the gateway have one of two forms. Whatever is wrong with a document becomes a Problem, never an exception,
// so that all of it is reported at once. A call that cannot do what it was asked to do throws an exception derived from
// std::exception whose what() is a message for people: std::invalid_argument or std::out_of_range for its arguments,
// otherwise the class that its header names. A reader of documents turns such an exception into a Problem, because it
// knows the place. A look-up that finds nothing returns null or nullopt, which is not an error.
struct Problem {
    // A document with an error cannot be used; a warning tells of what is probably not meant.
    enum class Severity { ERROR, WARNING };

    Severity severity = Severity::ERROR;  // whether the document can be used
    std::size_t line = 0;                 // from 1 on
    std::string pointer;                  // JSON pointer (RFC 6901) to the faulty value; "" is the whole document
    std::string message;                  // what is wrong, and what is allowed or near
};

// All that is wrong with a document.
using Problems = std::vector<Problem>;

// Whether one of them is an error, not a warning.
KZM_GATEWAY_EXPORT bool HasError(const Problems& problems);

// Sorts them by line and drops repetitions.
KZM_GATEWAY_EXPORT void SortByLine(Problems& problems);

}  // namespace kzm::ModbusGateway
