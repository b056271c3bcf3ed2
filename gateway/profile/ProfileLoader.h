#pragma once

#include <memory>
#include <string_view>

#include "gateway/json/Problem.h"
#include "gateway/profile/LoadedProfile.h"

namespace kzm::ModbusGateway {

// Makes a device model from a device profile: JSON with comments, as docs/profile.md and profile.schema.json say.
class ProfileLoader {
public:
    struct Result {
        // Null when there is an error: nothing half-built comes out.
        std::unique_ptr<LoadedProfile> profile;
        // Every error and warning, in the order of the lines.
        Problems problems;
    };

    // Never throws for what stands in the profile. On success the labels of the profile's enumerations are made known
    // to the platform's label dictionaries. Thread-safe.
    static Result Load(std::string_view text);

    // The JSON Schema (draft 7) of profiles.
    static std::string_view GetSchema();
};

}  // namespace kzm::ModbusGateway
