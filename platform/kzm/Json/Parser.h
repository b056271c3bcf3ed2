#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "kz/orba/StatusCode.h"
#include "kzm/Platform/Export.h"

namespace kzm::Json {

// Looks up parameters of operations.
class KZM_PLATFORM_EXPORT Parser {
public:
    // Copies the value of a key of a parameter object. NOT_FOUND for a missing key and for parameters that are not an
    // object; `value` is then left as it was. Thread-safe.
    static kz::orba::StatusCode CheckAndParse(const nlohmann::json& parameters, const std::string& key,
                                              nlohmann::json& value);
};

}  // namespace kzm::Json
