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

// How a measurement is read from the device. Nothing is known of it if the record has its default values.
struct ModbusMeasurementInformation {
    ModbusFunctionCode mFunctionCode{};                   // of the frame; 0 in models of object adapters
    std::uint16_t mRegisterAddress = 0;                   // first register, 0 to 65535
    std::uint8_t mNumberOfRegisters = 0;                  // consecutive registers
    LogicCodeIdentifier mLogicCode{};                     // how they are decoded
    double mScaleFactor = 1.0;                            // value = offset + raw * scale factor, in the unit
    float mOffset = 0.0F;                                 // in the unit
    ByteOrderingEnum mByteOrdering{};                     // of the words
    std::shared_ptr<std::vector<std::uint8_t>> mBitmask;  // the bits that count
    std::string mUnit;                                    // e.g. "A"; empty if unknown
    // The labels of an enumeration; null for any other value.
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> mEnumerationPairs;
};

}  // namespace kzm::ModbusDeviceModel::Device
