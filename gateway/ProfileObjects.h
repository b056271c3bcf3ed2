#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "gateway/JsonCursor.h"
#include "gateway/ProfileElements.h"
#include "gateway/ProfileLoader.h"

namespace kzm::ModbusGateway {

// The section "objects" of a device profile.
class ProfileObjects {
public:
    using TextByName = ModbusDeviceModel::Device::DeviceModel::TextByName;

    // Reads the section and reports what is wrong with it. The elements must outlive this section.
    ProfileObjects(const JsonCursor& section, ProfileElements& elements);

    // Valid when no error was reported. In the order of the profile; units and class names by the objects' names.
    const std::vector<LoadedProfile::Object>& GetObjects() const { return mObjects; }
    const TextByName& GetUnits() const { return mUnits; }
    const TextByName& GetClassNames() const { return mClassNames; }
    ModbusDeviceModel::Device::DeviceModel::ObjectAdapters GetAdapters() const;

    // An object as something else of the profile may need it.
    struct Known {
        JsonCursor place;
        // Null for an object of several values, and for a plain one.
        std::shared_ptr<ModbusDeviceModel::DataModel::DataObjectAdapter> adapter;
        ValueKind kind;
        bool faulty;
    };
    // Null for an unknown object.
    const Known* Find(const std::string& name, const std::string& alias) const;
    // Each name as often as it has objects, faulty ones too.
    Names GetNames() const;

    // Makes what the labels of the objects' elements stand for known to the platform's data-model dictionary.
    void PublishLabels() const;

private:
    using Adapter = std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter>;

    // The object at hand.
    struct Draft {
        JsonCursor place;
        std::string urn;
        bool plain;
        std::string className = {};
        ValueKind kind = ValueKind::OTHER;
        std::vector<Adapter> adapters = {};
        std::set<std::string> labels = {};
        bool labelsKnown = true;  // no element is faulty
    };
    // What a label stands for, and who says so.
    struct Translation {
        nlohmann::json value;
        JsonCursor place;
    };

    void ReadObject(const JsonCursor& place);
    void ReadRoles(const JsonCursor& roles, const std::string& path, Draft& draft);
    void ReadPaths(Draft& draft);
    void ReadLabels(const Draft& draft);
    void KeepByName(TextByName& texts, const JsonCursor& object, const char* member, const std::string& text);

    ProfileElements& mElements;
    std::vector<LoadedProfile::Object> mObjects;
    std::map<std::pair<std::string, std::string>, Known> mKnown;  // by name and alias
    TextByName mUnits;
    TextByName mClassNames;
    std::map<std::pair<std::string, std::string>, Translation> mLabels;  // by urn and label
};

}  // namespace kzm::ModbusGateway
