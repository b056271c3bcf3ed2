#pragma once

#include "DataModel/ElementData.h"
#include "DeviceProfile/ModbusMeasurementInformation.h"

namespace kzm::ModbusDeviceModel::DataModel {

// How an element is read from the device: its own settings. The function code belongs to its frame and the unit to its
// object, so neither is set. Bitmask and enumeration pairs are shared with the element. Thread-safe.
inline Device::ModbusMeasurementInformation MeasurementInformationOf(const ElementData& element) {
    Device::ModbusMeasurementInformation information;
    information.mRegisterAddress = element.GetDeviceRegister();
    information.mNumberOfRegisters = element.GetNumberOfRegisters();
    information.mLogicCode = element.GetLogicCode();
    information.mScaleFactor = element.GetScaleFactor();
    information.mOffset = element.GetOffset();
    information.mByteOrdering = element.GetLocalByteOrdering();
    information.mBitmask = element.GetBitmaskVector();
    information.mEnumerationPairs = element.GetEnumerationPairs();
    return information;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
