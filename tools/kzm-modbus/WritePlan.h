#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TextTable.h"
#include "gateway/model/ValueEncoder.h"
#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusTool {

// What is to be written to one object: the elements of its service, and the values that some of them are to have.
class WritePlan {
public:
    using Payload = ModbusDeviceModel::DeviceProfile::FrameDataValue;

    // `object`: "NAME[/ALIAS]"; `assignments`: "ELEMENT=VALUE". Throws Failure for what the profile does not have, for
    // elements of more than one frame, and for a value that cannot be encoded.
    WritePlan(const ModbusGateway::LoadedProfile& profile, const std::string& object,
              const std::vector<std::string>& assignments);

    // The frame that is written, with all its registers 0.
    Payload GetEmptyFrame() const { return *mMapping.BuildFrameDataValue(mFrameIndex); }

    // The frame as it is to be. Bits of registers that do not belong to the named elements stay as they are. Throws
    // Failure when an element would be read back as something else than its value.
    Payload Apply(const Payload& before) const;

    // The registers from the first that changes to the last; no registers when none does.
    static Payload ChangesOf(const Payload& before, const Payload& after);

    // Headings and a row for each register of the named elements; for each element of the service in the frame.
    // `exact`: all digits of numbers, not only those of the element's precision.
    std::vector<Row> CompareRegisters(const Payload& before, const Payload& after) const;
    std::vector<Row> CompareElements(const Payload& before, const Payload& after, bool exact) const;

private:
    using Element = std::shared_ptr<ModbusDeviceModel::DataModel::ElementData>;

    Element FindElement(const std::string& name) const;
    nlohmann::json ValueIn(const Payload& payload, const Element& element) const;

    ModbusDeviceModel::Device::ServiceMapping mMapping;
    bool mBigEndian;
    std::vector<std::pair<Element, ModbusGateway::EncodedValue>> mWanted;
    std::uint8_t mFrameIndex = 0;
};

}  // namespace kzm::ModbusTool
