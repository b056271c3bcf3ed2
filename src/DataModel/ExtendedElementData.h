#pragma once

#include "DataModel/ElementData.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/RawRecord.h"

namespace kzm::ModbusDeviceModel::DataModel {

// An element whose decoding depends on more than its own registers: it is read from a sub-device, or its value is a
// power whose decimal exponent another element holds. Its words are taken as they were read, whatever its order says,
// and its mask does not change its value. Threads as ElementData.
class KZM_MODBUS_EXPORT ExtendedElementData : public ElementData {
public:
    // As for ElementData; `validityStatus`: the number that means "not available" as "0x" and upper-case hexadecimal
    // digits without leading zeros, looked at whenever it is there. `dependency`: the elements that hold the decimal
    // exponent.
    ExtendedElementData(std::uint16_t registerAddress, std::uint8_t numberOfRegisters,
                        std::shared_ptr<std::vector<std::uint8_t>> bitmask, double scaleFactor,
                        std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
                        std::uint8_t frameIndex, std::string attributePath, float offset,
                        std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs,
                        std::uint16_t slaveOffset, std::uint32_t extraParameter,
                        std::shared_ptr<std::vector<LogicCodeDependency>> dependency, ByteOrderingEnum byteOrdering);
    ~ExtendedElementData() override;

    // Results as ElementData::Build, but no bytes at all are refused without a log line. The codes of scaled powers ask
    // `valueProcesser`, where there is one, for the decimal exponent. The last of the dependencies' answers that is a
    // finite number counts; without any the exponent is 0. A number may come as text, with blanks around it and a
    // leading "+"; a text or number that is not finite, and a text that is not wholly a number, are skipped with a
    // warning in the log. A scaled number that does not fit 64 bits, and a power that is not finite, are null and
    // invalid.
    bool Build(unsigned char* buffer, unsigned int length, bool deviceBigEndian, int request, bool& invalid,
               nlohmann::json& value, ServiceImpl::IValueProcesser* valueProcesser) override;
    // What the constructor was given.
    std::int16_t GetSlaveOffset() const override;
    std::shared_ptr<std::vector<LogicCodeDependency>> GetLogicCodeDependency() const override;

    // What the constructor was given.
    std::uint32_t GetExtraParameter() const { return mExtraParameter; }

    // value = the record's unsigned 64-bit number times 10 to the power of `exponent`, as floating point without a
    // range. The last argument is not used.
    void OperateScaledPower(myData& data, nlohmann::json& value, double exponent, double unused);

private:
    bool ApplyLogicConversion(int request, myData& data, bool& invalid, nlohmann::json& value,
                              ServiceImpl::IValueProcesser* valueProcesser);

    std::int16_t mSlaveOffset;
    std::uint32_t mExtraParameter;
    std::shared_ptr<std::vector<LogicCodeDependency>> mDependency;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
