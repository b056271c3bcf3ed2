#pragma once

#include <cstdint>
#include <string>

#include "kzm/Platform/Export.h"

namespace kz::orba {

// Result of an operation of the platform. It can hold any number; those with a text are named here.
enum class StatusCode : std::int32_t {
    OK = 0,
    INVALID_ARGUMENT = 1,
    ALREADY_SET = 20,
    OUT_OF_RANGE = 28,
    NOT_AVAILABLE = 42,
    NOT_FOUND = 44,
    NOT_SUPPORTED = 60,
    MEASUREMENT_NOT_AVAILABLE = 63,
    ADDRESS_OVERFLOW = 64,
};

// The status in words, e.g. "not found (44)"; "status 7" for a number without a text. Thread-safe.
KZM_PLATFORM_EXPORT std::string ConvertStatusCodeToString(StatusCode status);

}  // namespace kz::orba
