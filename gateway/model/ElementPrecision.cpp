#include "gateway/model/ElementPrecision.h"

#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceProfile::RawView;

NumberPrecision PrecisionOf(ModbusDeviceModel::LogicCodeIdentifier type, double scale, float offset) {
    const RawView view = ModbusDeviceModel::DeviceProfile::RowOf(type).view;
    if (view == RawView::FLOAT) {
        return NumberPrecision::FLOAT;
    }
    const bool isPlain = scale == 1 && offset == 0;
    return view == RawView::DOUBLE && isPlain ? NumberPrecision::DOUBLE : NumberPrecision::DIGITS_15;
}

NumberPrecision PrecisionOf(const ModbusDeviceModel::DataModel::ElementData& element) {
    return PrecisionOf(element.GetLogicCode(), element.GetScaleFactor(), element.GetOffset());
}

}  // namespace kzm::ModbusGateway
