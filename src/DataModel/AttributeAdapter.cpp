#include "DataModel/AttributeAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

AttributeAdapter::~AttributeAdapter() = default;

}  // namespace kzm::ModbusDeviceModel::DataModel
