#pragma once

#include <memory>
#include <string_view>

#include "gateway/Export.h"
#include "gateway/chains/ChainRegistry.h"
#include "gateway/json/Problem.h"
#include "gateway/profile/LoadedProfile.h"

namespace kzm::ModbusGateway {

// Makes a device model from a device profile: JSON with comments, as docs/profile.md and the JSON Schema describe it.
class KZM_GATEWAY_EXPORT ProfileLoader {
public:
    // A loaded profile, or why there is none.
    struct Result {
        // Null if there is an error: nothing half-built comes out.
        std::unique_ptr<LoadedProfile> profile;
        // Every error and warning, sorted by line, each once. Empty for a profile without fault.
        Problems problems;
    };

    // Reads a profile. `text`: UTF-8, of any size and content; what is wrong with it becomes problems, never an
    // exception. Only std::bad_alloc leaves this function. `chains`: the processing chains that profiles may name
    // beside the library's own; the result does not refer to it afterwards.
    //
    // On success the labels of the profile's enumerations and their translations are added to the platform's label
    // dictionaries, which the whole process shares. Logs nothing. Thread-safe, as long as nobody adds to `chains`.
    static Result Load(std::string_view text, const ChainRegistry& chains = {});

    // The JSON Schema (draft 7) of profiles, for editors.
    static std::string_view GetSchema();
};

}  // namespace kzm::ModbusGateway
