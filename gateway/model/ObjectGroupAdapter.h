#pragma once

#include <memory>
#include <vector>

#include "DataModel/VortaObjectAdapter.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// Fills one object from several object adapters, each with its own element path. Threads as VortaObjectAdapter.
class KZM_GATEWAY_EXPORT ObjectGroupAdapter final : public ModbusDeviceModel::DataModel::VortaObjectAdapter {
public:
    // Those that fill the parts of the object.
    using Adapters = std::vector<std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter>>;

    // None of them may be null.
    explicit ObjectGroupAdapter(Adapters adapters);

    // What the constructor was given.
    const Adapters& GetAdapters() const { return mAdapters; }

    // Asks every adapter, whatever the others return; returns the first status other than SUCCESS.
    kz::orba::StatusCode GetObject(
        const std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian,
        bool ignoreCacheAge, kz::orba::VortaORBAObject& object) override;
    std::set<std::uint8_t>& GetFrameIndexes() override;
    // The frames of all adapters; returns the first status other than SUCCESS, the others are still asked.
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // The first adapter's.
    ModbusDeviceModel::Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

private:
    Adapters mAdapters;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusGateway
