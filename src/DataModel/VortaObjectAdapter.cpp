#include "DataModel/VortaObjectAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

VortaObjectAdapter::~VortaObjectAdapter() = default;

}  // namespace kzm::ModbusDeviceModel::DataModel
