#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/AttributeAdapter.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/JsonCursor.h"
#include "gateway/ProblemText.h"
#include "gateway/ProfileEnumerations.h"
#include "gateway/ProfileFrames.h"

namespace kzm::ModbusGateway {

// What fills an attribute of an object: an element of the device, or a constant.
struct ProfileElement {
    std::shared_ptr<ModbusDeviceModel::DataModel::AttributeAdapter> adapter;
    const ModbusDeviceModel::DeviceProfile::LogicCodeRow* type = nullptr;  // null for a constant
    const nlohmann::json* constant = nullptr;                              // null for an element
    Names labels;                                                          // of its enumeration
    std::optional<std::uint8_t> frame;
};

// The section "elements" of a device profile, and the elements that stand at an attribute's role itself.
class ProfileElements {
public:
    // Reads the section and reports what is wrong with it. The other sections must outlive this one.
    ProfileElements(const JsonCursor& section, ProfileFrames& frames, ProfileEnumerations& enumerations);

    // What fills a role: the element that it names or is. Null for a role that is not there, and for a faulty one,
    // which is reported.
    std::shared_ptr<const ProfileElement> Get(const JsonCursor& role);

    // Warns of named elements that were not asked for.
    void ReportUnused() const;

private:
    struct Named {
        JsonCursor place;
        std::shared_ptr<const ProfileElement> element;
        bool used = false;
    };

    std::shared_ptr<const ProfileElement> Read(const JsonCursor& place);
    std::shared_ptr<const ProfileElement> GetNamed(const JsonCursor& role);

    ProfileFrames& mFrames;
    ProfileEnumerations& mEnumerations;
    std::map<std::string, Named> mNamed;
};

}  // namespace kzm::ModbusGateway
