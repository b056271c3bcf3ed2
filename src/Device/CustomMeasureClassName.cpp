#include "Device/CustomMeasureClassName.h"

#include "DeviceProfile/ClassOfLogicCode.h"

namespace kzm::ModbusDeviceModel::Device {

kz::orba::StatusCode CustomMeasureClassName::GetClassNameForLogicCode(const LogicCodeIdentifier& logicCode,
                                                                      std::string& className) {
    return DeviceProfile::GetClassOfLogicCode(logicCode, className);
}

}  // namespace kzm::ModbusDeviceModel::Device
