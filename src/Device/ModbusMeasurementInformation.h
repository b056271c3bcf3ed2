#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/ByteOrderingEnum.h"
#include "DeviceProfile/EnumerationPairData.h"
#include "DeviceProfile/LogicCodeIdentifier.h"
#include "DeviceProfile/ModbusFunctionCode.h"

namespace kzm::ModbusDeviceModel::Device {

// How a measurement is read from the device. A default record means that nothing is known.
struct ModbusMeasurementInformation {
    ModbusFunctionCode mFunctionCode{};
    std::uint16_t mRegisterAddress = 0;
    std::uint8_t mNumberOfRegisters = 0;
    LogicCodeIdentifier mLogicCode{};
    double mScaleFactor = 1.0;
    float mOffset = 0.0F;
    ByteOrderingEnum mByteOrdering{};
    std::shared_ptr<std::vector<std::uint8_t>> mBitmask;
    std::string mUnit;
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> mEnumerationPairs;
};

}  // namespace kzm::ModbusDeviceModel::Device
