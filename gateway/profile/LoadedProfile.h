#pragma once

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/VortaObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "gateway/cache/DeviceFrames.h"
#include "gateway/json/NumberText.h"
#include "gateway/profile/ProfilePlace.h"

namespace kzm::ModbusGateway {

// A device model made from a profile, and what the profile says beyond it. Built by ProfileLoader::Load. Reading it,
// and requests to its models, may happen on many threads at once.
struct LoadedProfile {
    // An object that the profile publishes.
    struct Object {
        std::string name;   // with the alias, what requests to the model name
        std::string alias;  // may be empty
        std::string unit;   // may be empty
        std::string key;    // its id in the data model; empty for an object without
        // The object before the device has filled it: the structure that belongs to its key, otherwise empty.
        nlohmann::json structure;
        std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter> adapter;  // never null
        // How precise the number is that the device gives at an element path; "" is the top of the object.
        std::map<std::string, NumberPrecision> precisions = {};
    };

    // A computed alarm of the model, under the name and alias of its object.
    struct Alarm {
        std::string name;          // of its object
        std::string alias;         // may be empty
        nlohmann::json structure;  // the object before its first evaluation
        std::shared_ptr<ModbusDeviceModel::DataModel::ComputedAlarmElement> element;  // never null
    };

    // An object that a service writes.
    struct Service {
        std::string name;   // of the object
        std::string alias;  // may be empty
    };

    // The frames of the model with their names, e.g. for a Capture.
    DeviceFrames GetDeviceFrames() const { return {model->GetModelName(), frameNames, model->GetFrames()}; }

    std::vector<std::string> frameNames;  // of the model's frames, by their indexes
    // Where the profile defines a part of the model, by the part's address: an AttributeAdapter, a VortaObjectAdapter,
    // a ComputedAlarmElement or a ComputedAlarmOperand. A named element has one place, wherever it is used.
    std::unordered_map<const void*, std::shared_ptr<const ProfilePlace>> places;
    // In the order of the profile.
    std::vector<Object> objects;
    std::vector<Alarm> alarms;
    std::vector<Service> services;
    std::unique_ptr<ModbusDeviceModel::Device::DeviceModel> model;  // never null
    // Has the same frames and finds the service mappings; never null.
    std::unique_ptr<ModbusDeviceModel::Device::DeviceModel> serviceModel;
};

}  // namespace kzm::ModbusGateway
