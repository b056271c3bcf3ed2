#pragma once

#include <string>

#include "DeviceProfile/LogicCodeIdentifier.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::Device {

// Names the data-model classes of measurements that users define.
class KZM_MODBUS_EXPORT CustomMeasureClassName {
public:
    // The data-model class of a measurement that is decoded with a logic code, e.g.
    // "$iot.measurement.NumericalMeasurementValue<Float>". 44, and `className` untouched, for codes above 62.
    // Thread-safe.
    static kz::orba::StatusCode GetClassNameForLogicCode(const LogicCodeIdentifier& logicCode, std::string& className);
};

}  // namespace kzm::ModbusDeviceModel::Device
