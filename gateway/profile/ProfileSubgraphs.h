#pragma once

#include <map>
#include <vector>

#include "Device/DeviceModel.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

// The section "subgraphs" of a device profile; only devices of a dynamic class have it.
class ProfileSubgraphs {
public:
    // Reads the section and reports what is wrong with it. `known`: the names of all objects, alarms and services,
    // including faulty ones.
    ProfileSubgraphs(const JsonCursor& section, const Names& known);

    // Adds the sub-graphs to the model; without the section the device keeps its fixed class.
    void ApplyTo(ModbusDeviceModel::Device::DeviceModel& model) const;

private:
    bool mDynamic;
    std::map<ModbusDeviceModel::Device::VortaObjectCategory, Names> mSubgraphs;
};

}  // namespace kzm::ModbusGateway
