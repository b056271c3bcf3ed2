#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "kz/orba/StatusCode.h"
#include "kzm/Platform/Export.h"

namespace kzm::edm::dictionary {

// Translates enumeration labels into values of the device dictionary. One table per process, filled by whoever loads a
// device profile. Thread-safe.
class KZM_PLATFORM_EXPORT EdmEnumToEdmValue {
public:
    // NOT_FOUND for an unknown label; `value` is then left as it was.
    static kz::orba::StatusCode ConvertEdmEnumToEdmValue(const std::string& label, nlohmann::json& value);

    // Adds a label or replaces its value.
    static void SetLabel(const std::string& label, const nlohmann::json& value);
};

}  // namespace kzm::edm::dictionary
