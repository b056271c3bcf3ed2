#pragma once

#include <string>

#include "DeviceProfile/LogicCodeIdentifier.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::Device {

// The data-model classes of custom measurements.
class KZM_MODBUS_EXPORT CustomMeasureClassName {
public:
    // The data-model class of a measurement that is decoded with a logic code, e.g.
    // "$iot.measurement.NumericalMeasurementValue<Float>". NOT_FOUND, with `className` untouched, for codes that are
    // not in the table of logic codes. Thread-safe, logs nothing.
    static kz::orba::StatusCode GetClassNameForLogicCode(const LogicCodeIdentifier& logicCode, std::string& className);
};

}  // namespace kzm::ModbusDeviceModel::Device
