#include "DataModel/ElementData.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "DataModel/LogicCodeDependency.h"
#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

ElementData::ElementData(std::uint16_t registerAddress, std::uint8_t numberOfRegisters,
                         std::shared_ptr<std::vector<std::uint8_t>> bitmask, double scaleFactor,
                         std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
                         std::uint8_t frameIndex, std::string attributePath, float offset,
                         std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs,
                         ByteOrderingEnum byteOrdering, bool validityCheckEnabled)
    : mRegisterAddress(registerAddress),
      mNumberOfRegisters(numberOfRegisters),
      mByteOrdering(byteOrdering),
      mValidityCheckEnabled(validityCheckEnabled),
      mAttributePath(std::move(attributePath)),
      mScaleFactor(scaleFactor),
      mOffset(offset),
      mBitmask(std::move(bitmask)),
      mValidityStatus(std::move(validityStatus)),
      mEnumerationPairs(std::move(enumerationPairs)),
      mLogicCode(logicCode),
      mFrameIndex(frameIndex),
      mNeedsScaling(offset != 0.0F || scaleFactor != 1.0),
      mRow(&DeviceProfile::RowOf(logicCode)) {}

ElementData::~ElementData() = default;

std::uint16_t ElementData::GetDeviceRegister() const {
    return mRegisterAddress;
}

std::uint8_t ElementData::GetNumberOfRegisters() const {
    return mNumberOfRegisters;
}

std::int16_t ElementData::GetSlaveOffset() const {
    return 0;
}

std::shared_ptr<std::vector<LogicCodeDependency>> ElementData::GetLogicCodeDependency() const {
    return nullptr;
}

bool ElementData::IsLogicCodeManageInLittleEndian(LogicCodeIdentifier) const {
    return mRow->wordsAlwaysSwapped;
}

nlohmann::json ElementData::ToJson() const {
    return {{"registerAddress", mRegisterAddress},
            {"nbRegisters", mNumberOfRegisters},
            {"scaleFactor", mScaleFactor},
            {"frameIndex", mFrameIndex},
            {"offset", mOffset},
            {"byteOrdering", static_cast<std::int16_t>(mByteOrdering)},
            {"attributePath", mAttributePath},
            {"logicCode", static_cast<std::uint8_t>(mLogicCode)}};
}

}  // namespace kzm::ModbusDeviceModel::DataModel
