#pragma once

#include "DataModel/ElementData.h"
#include "Device/ModbusMeasurementInformation.h"

namespace kzm::ModbusDeviceModel::DataModel {

// What an element tells of how it is read. The function code is its frame's and the unit its object's: neither is set.
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
