#pragma once

#include <variant>

#include "DataModel/ComputedAlarmOperand.h"
#include "DataModel/DataObjectAdapter.h"
#include "DataModel/ElementData.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A measurement read from the register cache.
class KZM_MODBUS_EXPORT MeasurementComputedAlarmOperand : public ComputedAlarmOperand {
public:
    // An element, a data object, or nothing.
    using Source = std::variant<std::monostate, std::shared_ptr<ElementData>, std::shared_ptr<DataObjectAdapter>>;

    // `name`: the key in the parameters of the chain. Asks a data object for its frames now, so that no request has to;
    // if one of its roles has no frame, those found so far are taken.
    MeasurementComputedAlarmOperand(std::string name, Source source);
    ~MeasurementComputedAlarmOperand() override;

    // Never nullopt; empty for a source that reads no frame.
    std::optional<std::set<std::uint8_t>> GetFrameIndexes() const override;
    // The status of AttributeConverter::GetValueFromElementData, or of the data object's GetEdmValue; NOT_AVAILABLE
    // without a source.
    kz::orba::StatusCode GetValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                  bool deviceBigEndian, bool ignoreCacheAge, const PreviousMeasurements& previous,
                                  const std::string& alarmName, DeviceCache::_Quality_t& quality,
                                  nlohmann::json& value) const override;

private:
    Source mSource;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
