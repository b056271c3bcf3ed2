#include "gateway/model/ObjectGroupAdapter.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "DataModel/StepObserver.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusGateway {

using kz::orba::StatusCode;

namespace {

// Calls every adapter; the first status other than SUCCESS.
template <typename Adapters, typename Call>
StatusCode FirstFailure(const Adapters& adapters, Call call) {
    StatusCode result{};
    for (const auto& adapter : adapters) {
        const StatusCode status = call(*adapter);
        result = result == StatusCode{} ? status : result;
    }
    return result;
}

}  // namespace

ObjectGroupAdapter::ObjectGroupAdapter(Adapters adapters) : mAdapters(std::move(adapters)) {}

StatusCode ObjectGroupAdapter::GetObject(
    const std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian,
    bool ignoreCacheAge, kz::orba::VortaORBAObject& object) {
    auto* const observer = ModbusDeviceModel::DataModel::GetStepObserver();
    if (observer != nullptr) {
        observer->See({.kind = ModbusDeviceModel::DataModel::StepKind::GROUP});
    }
    constexpr auto NO_QUALITY = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
    return FirstFailure(mAdapters, [&](ModbusDeviceModel::DataModel::VortaObjectAdapter& adapter) {
        return RunPart(observer, "part", &adapter, NO_QUALITY, nullptr,
                       [&] { return adapter.GetObject(cache, deviceBigEndian, ignoreCacheAge, object); });
    });
}

std::set<std::uint8_t>& ObjectGroupAdapter::GetFrameIndexes() {
    return mFrameIndexes;
}

StatusCode ObjectGroupAdapter::ComputeFrameIndexes() {
    return FirstFailure(mAdapters, [this](ModbusDeviceModel::DataModel::VortaObjectAdapter& adapter) {
        const StatusCode status = adapter.ComputeFrameIndexes();
        mFrameIndexes.insert(adapter.GetFrameIndexes().begin(), adapter.GetFrameIndexes().end());
        return status;
    });
}

ModbusDeviceModel::Device::ModbusMeasurementInformation ObjectGroupAdapter::GetModbusMeasurementInformation() const {
    return mAdapters.empty() ? ModbusDeviceModel::Device::ModbusMeasurementInformation{}
                             : mAdapters.front()->GetModbusMeasurementInformation();
}

}  // namespace kzm::ModbusGateway
