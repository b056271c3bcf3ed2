#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DeviceProfile/EnumerationPairData.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/json/JsonCursor.h"

namespace kzm::ModbusGateway {

// The section "enumerations" of a device profile. How raw values are written depends on the logic code of the element
// that uses the enumeration, so an enumeration is read once per use.
class ProfileEnumerations {
public:
    using Pairs = std::shared_ptr<std::vector<ModbusDeviceModel::DeviceProfile::EnumerationPairData>>;

    explicit ProfileEnumerations(const JsonCursor& section);

    // The pairs of the enumeration that an element names, null if it names none. nullopt, and reported, for a faulty
    // enumeration or one that does not fit the type.
    std::optional<Pairs> Get(const JsonCursor& element, const ModbusDeviceModel::DeviceProfile::LogicCodeRow& type);

    // The line of an enumeration, which must exist.
    std::size_t GetLine(const std::string& name) const { return mEnumerations.at(name).place.GetLine(); }

    // Warns of enumerations that no element used.
    void ReportUnused() const;

private:
    struct Enumeration {
        JsonCursor place;
        bool used = false;
    };

    std::map<std::string, Enumeration> mEnumerations;
};

}  // namespace kzm::ModbusGateway
