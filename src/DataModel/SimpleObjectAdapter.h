#pragma once

#include <string>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ElementPath.h"
#include "DataModel/VortaObjectAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Fills an object with one value and nothing else: no quality, no date-time.
class KZM_MODBUS_EXPORT SimpleObjectAdapter : public VortaObjectAdapter {
public:
    // `elementPath`: see ElementPath. Without a value adapter every operation fails with status 1.
    SimpleObjectAdapter(const std::string& elementPath, std::shared_ptr<AttributeAdapter> valueAdapter);
    ~SimpleObjectAdapter() override;

    // Writes the attribute "value". Any status but 0, which is the value adapter's (1 without one), leaves the object
    // as it was. Throws the JSON library's error for an element path that the object's structure does not admit.
    kz::orba::StatusCode GetObject(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                   bool deviceBigEndian, bool ignoreCacheAge,
                                   kz::orba::VortaORBAObject& object) override;

    std::set<std::uint8_t>& GetFrameIndexes() override;
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // Should not be asked: logs an error and gives the default record.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

private:
    ElementPath mElementPath;
    std::shared_ptr<AttributeAdapter> mValueAdapter;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
