#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/LoadedProfile.h"
#include "gateway/profile/ObjectIdentity.h"
#include "gateway/profile/ProfileElements.h"

namespace kzm::ModbusGateway {

// The section "objects" of a device profile.
class ProfileObjects {
public:
    using TextByName = ModbusDeviceModel::Device::DeviceModel::TextByName;

    // Reads the section and reports what is wrong with it. The elements must outlive this section.
    ProfileObjects(const JsonCursor& section, ProfileElements& elements);

    // Valid if no error was reported. In the order of the profile; units and class names by the objects' keys, or by
    // their names if they have none.
    const std::vector<LoadedProfile::Object>& GetObjects() const { return mObjects; }
    const TextByName& GetUnits() const { return mUnits; }
    const TextByName& GetClassNames() const { return mClassNames; }
    ModbusDeviceModel::Device::DeviceModel::ObjectAdapters GetAdapters() const;

    // What other sections may need of an object.
    struct Known {
        JsonCursor place;
        // Null for an object of several values, and for a plain one.
        std::shared_ptr<ModbusDeviceModel::DataModel::DataObjectAdapter> adapter;
        ValueKind kind;
        bool faulty;
    };
    // By name and alias, or by key. Null for an unknown object.
    const Known* Find(const std::string& nameOrKey, const std::string& alias) const;
    // One per object, including faulty ones.
    Names GetNames() const;

    // Of the objects and of their parts.
    const ProfilePlaces& GetPlaces() const { return mPlaces; }

    // Adds the translations of the labels to the platform's data-model dictionary.
    void PublishLabels() const;

private:
    using Adapter = std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter>;

    // The object that is being read.
    struct Draft {
        JsonCursor place;
        ObjectIdentity identity;
        bool plain;
        std::string urn;
        std::string mainPath = {};  // the element path of the roles in the object itself
        std::string className = {};
        ValueKind kind = ValueKind::OTHER;
        std::vector<Adapter> adapters = {};
        std::map<std::string, NumberPrecision> precisions = {};
        std::set<std::string> labels = {};
        bool labelsKnown = true;  // no element is faulty
    };
    // What a label is translated into, and where that is said.
    struct Translation {
        nlohmann::json value;
        JsonCursor place;
    };

    // What fills a role: an element that the object states, or the named element that feeds it by the dictionary.
    struct Filling {
        JsonCursor place;
        std::string source = {};  // name of the latter; empty for the former
        std::shared_ptr<const ProfileElement> element = nullptr;
        bool isThere = false;  // without `element`: it is faulty
    };

    void ReadObject(const JsonCursor& place);
    void ReadPaths(Draft& draft);
    void ReadRoles(const std::string& path, Draft& draft);
    Filling FillRole(const char* member, const char* attribute, const std::string& path, const Draft& draft);
    void AddAdapter(const ProfileElement& value,
                    const std::shared_ptr<ModbusDeviceModel::DataModel::DataObjectAdapter>& adapter,
                    const std::string& path, Draft& draft);
    void ReadLabels(const Draft& draft);
    void Keep(const Draft& draft);
    void KeepText(TextByName& texts, const Draft& draft, const char* member, const std::string& text);

    ProfileElements& mElements;
    std::vector<LoadedProfile::Object> mObjects;
    std::map<std::pair<std::string, std::string>, Known> mKnown;  // by name and alias
    std::map<std::string, std::pair<std::string, std::string>> mNamesByKey;
    TextByName mUnits;
    TextByName mClassNames;
    std::map<std::pair<std::string, std::string>, Translation> mLabels;  // by urn and label
    ProfilePlaces mPlaces;
};

}  // namespace kzm::ModbusGateway
