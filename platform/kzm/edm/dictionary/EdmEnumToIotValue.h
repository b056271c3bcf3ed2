#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "kz/orba/StatusCode.h"
#include "kzm/Platform/Export.h"

namespace kzm::edm::dictionary {

// Translates enumeration labels into values of the data model, by the urn of the attribute. One table per process,
// filled by whoever loads a device profile. Thread-safe.
class KZM_PLATFORM_EXPORT EdmEnumToIotValue {
public:
    // NOT_FOUND for a label that is unknown under the urn; `value` is then left as it was. `label` may be part of
    // `value`.
    static kz::orba::StatusCode ConvertEdmEnumToIotValue(const std::string& urn, const std::string& label,
                                                         nlohmann::json& value);

    // Adds a label or replaces its value.
    static void SetLabel(const std::string& urn, const std::string& label, const nlohmann::json& value);
};

}  // namespace kzm::edm::dictionary
