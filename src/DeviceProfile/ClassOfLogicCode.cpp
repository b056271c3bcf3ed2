#include "DeviceProfile/ClassOfLogicCode.h"

#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

constexpr const char* NameOf(ValueClass valueClass) {
    switch (valueClass) {
        case ValueClass::BOOLEAN:
            return "$iot.measurement.DiscreteMeasurementValue<Boolean>";
        case ValueClass::INTEGER:
            return "$iot.measurement.NumericalMeasurementValue<Integer>";
        case ValueClass::FLOAT:
            return "$iot.measurement.NumericalMeasurementValue<Float>";
        case ValueClass::STRING:
            return "$iot.measurement.DiscreteMeasurementValue<String>";
        case ValueClass::DATE_TIME:
            return "$iot.measurement.DiscreteMeasurementValue<DateTime>";
        case ValueClass::NONE:
            break;
    }
    return nullptr;
}

}  // namespace

kz::orba::StatusCode GetClassOfLogicCode(LogicCodeIdentifier logicCode, std::string& className) {
    const char* name = NameOf(RowOf(logicCode).valueClass);
    if (name == nullptr) {
        return Status::NOT_FOUND;
    }
    className = name;
    return Status::SUCCESS;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
