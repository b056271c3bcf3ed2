#pragma once

#include <memory>
#include <vector>

#include "DataModel/VortaObjectAdapter.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// Fills one object from several object adapters, each with its own element path. Threads as VortaObjectAdapter.
class KZM_GATEWAY_EXPORT ObjectGroupAdapter final : public ModbusDeviceModel::DataModel::VortaObjectAdapter {
public:
    using Adapters = std::vector<std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter>>;

    // Null adapters must not occur.
    explicit ObjectGroupAdapter(Adapters adapters);

    const Adapters& GetAdapters() const { return mAdapters; }

    // Asks every adapter, whatever the others give; returns the first status that is not 0.
    kz::orba::StatusCode GetObject(
        const std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian,
        bool ignoreCacheAge, kz::orba::VortaORBAObject& object) override;
    std::set<std::uint8_t>& GetFrameIndexes() override;
    // The union over the adapters; the first failure is returned, the others are still asked.
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // The first adapter's.
    ModbusDeviceModel::Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

private:
    Adapters mAdapters;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusGateway
