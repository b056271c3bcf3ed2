#pragma once

#include <string>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ElementPath.h"
#include "DataModel/VortaObjectAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Fills an object with one value and nothing else: no quality, no date-time.
class KZM_MODBUS_EXPORT SimpleObjectAdapter : public VortaObjectAdapter {
public:
    // `elementPath`: see ElementPath. Without a value adapter GetObject and ComputeFrameIndexes fail with
    // INVALID_ARGUMENT.
    SimpleObjectAdapter(const std::string& elementPath, std::shared_ptr<AttributeAdapter> valueAdapter);
    ~SimpleObjectAdapter() override;

    // Writes the attribute "value". The status is the value adapter's; unless it is SUCCESS the object stays as it was,
    // and statuses other than NOT_AVAILABLE are logged as errors. Throws what ElementPath::SetAttribute throws.
    kz::orba::StatusCode GetObject(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                   bool deviceBigEndian, bool ignoreCacheAge,
                                   kz::orba::VortaORBAObject& object) override;

    std::set<std::uint8_t>& GetFrameIndexes() override;
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // Not meant to be called: logs an error and returns the default record.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

private:
    ElementPath mElementPath;
    std::shared_ptr<AttributeAdapter> mValueAdapter;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
