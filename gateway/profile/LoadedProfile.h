#pragma once

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/VortaObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusGateway {

// A device model made from a profile, and what the profile says beyond it. Read by many threads.
struct LoadedProfile {
    struct Object {
        std::string name;
        std::string alias;
        std::string unit;  // may be empty
        std::string key;   // its id in the data model; empty for an object without
        // What it is before the device has filled it: of a key's structure, else empty.
        nlohmann::json structure;
        std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter> adapter;
        // How precise the number is that the device gives at an element path; "" is the top of the object.
        std::map<std::string, NumberPrecision> precisions = {};
    };

    // A computed alarm of the model, under the name and alias of its object.
    struct Alarm {
        std::string name;
        std::string alias;
        nlohmann::json structure;  // of custom alarms
        std::shared_ptr<ModbusDeviceModel::DataModel::ComputedAlarmElement> element;
    };

    // An object that a service writes.
    struct Service {
        std::string name;
        std::string alias;
    };

    // The model's frames bear these names, in the order of their indexes.
    std::vector<std::string> frameNames;
    // In the order of the profile.
    std::vector<Object> objects;
    std::vector<Alarm> alarms;
    std::vector<Service> services;
    std::unique_ptr<ModbusDeviceModel::Device::DeviceModel> model;
    // Has the same frames, and finds the service mappings; never null.
    std::unique_ptr<ModbusDeviceModel::Device::DeviceModel> serviceModel;
};

}  // namespace kzm::ModbusGateway
