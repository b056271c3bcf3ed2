#include "Device/IDeviceModel.h"

namespace kzm::ModbusDeviceModel::Device {

IDeviceModel::~IDeviceModel() = default;

}  // namespace kzm::ModbusDeviceModel::Device
