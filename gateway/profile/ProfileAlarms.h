#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DataModel/ComputedAlarmElement.h"
#include "Device/DeviceModel.h"
#include "gateway/chains/ChainRegistry.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/profile/LoadedProfile.h"
#include "gateway/profile/ProfileElements.h"
#include "gateway/profile/ProfileObjects.h"

namespace kzm::ModbusGateway {

// The section "alarms" of a device profile.
class ProfileAlarms {
public:
    // Reads the section and reports what is wrong with it. The other sections and the chains must
    // outlive this one.
    ProfileAlarms(const JsonCursor& section, ProfileElements& elements, const ProfileObjects& objects,
                  const ChainRegistry& chains);

    // Valid if no error was reported. In the order of the profile.
    const std::vector<LoadedProfile::Alarm>& GetAlarms() const { return mAlarms; }
    const ModbusDeviceModel::Device::DeviceModel::ComputedAlarms& GetComputedAlarms() const { return mComputed; }

    // Of the alarms and their operands.
    const ProfilePlaces& GetPlaces() const { return mPlaces; }

    // Of the alarms' objects, including faulty ones.
    const Names& GetNames() const { return mNames; }

private:
    struct Operand {
        JsonCursor place;
        std::shared_ptr<ModbusDeviceModel::DataModel::ComputedAlarmOperand> operand = nullptr;  // null: faulty
        ValueKind kind = ValueKind::OTHER;

        bool Is(ModbusDeviceModel::DataModel::ComputedAlarmOperandType type) const;
    };

    void ReadAlarm(const JsonCursor& place);
    static bool ReadChanges(const JsonCursor& alarm, const Operand& left, const Operand& right);
    Operand ReadOperand(const JsonCursor& alarm, const char* side);
    void ReadElement(const std::string& name, Operand& operand);
    void ReadObject(const std::string& name, Operand& operand) const;
    void CheckPrevious(const JsonCursor& alarm, const Operand& operand, const Operand& opposite);
    void Keep(const JsonCursor& place, LoadedProfile::Alarm alarm);

    ProfileElements& mElements;
    const ProfileObjects& mObjects;
    const ChainRegistry& mChains;
    std::vector<LoadedProfile::Alarm> mAlarms;
    Names mNames;
    ModbusDeviceModel::Device::DeviceModel::ComputedAlarms mComputed;
    ProfilePlaces mPlaces;
    std::map<std::string, JsonCursor> mRecords;  // the alarms, by the names of their previous values
};

}  // namespace kzm::ModbusGateway
