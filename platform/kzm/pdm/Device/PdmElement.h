#pragma once

#include <string>

#include "kzm/Platform/Export.h"

namespace kzm::pdm::Device {

// The identification elements of a device. Each has an id in device profiles (the PDM id, e.g. "LPHD1_SerNum"), a short
// id in the data model ("394"), a name in the data model ("PhysicalIdentification.SerialNumber") and a name in the PDM
// ("SerialNumber"). Every other text is an unknown id. Thread-safe.
class KZM_PLATFORM_EXPORT PdmElement {
public:
    // Whether the id is one of the dictionary, of either kind.
    static bool IsPdmElement(const std::string& id);
    // Whether it is a PDM id.
    static bool CheckIdElement(const std::string& id);
    // Whether it is a short id of the data model.
    static bool CheckIdVortaElement(const std::string& id);

    // Data-model name and PDM name by an id of either kind; empty for an unknown id.
    static std::string GetVortaIdentificationElement(const std::string& id);
    static std::string GetPdmIdentificationName(const std::string& id);
    // Short id by PDM id; empty for an unknown id.
    static std::string GetVortaIdForPdmId(const std::string& pdmId);
};

}  // namespace kzm::pdm::Device
