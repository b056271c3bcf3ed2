#include "DataModel/SimpleObjectAdapter.h"

#include <utility>

#include "DataModel/ValueRequest.h"
#include "Support/Log.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

constexpr const char* LOG_MODULE = "DataModel::SimpleObjectAdapter";
const std::string NO_URN;

}  // namespace

SimpleObjectAdapter::SimpleObjectAdapter(const std::string& elementPath, std::shared_ptr<AttributeAdapter> valueAdapter)
    : mElementPath(elementPath), mValueAdapter(std::move(valueAdapter)) {}

SimpleObjectAdapter::~SimpleObjectAdapter() = default;

kz::orba::StatusCode SimpleObjectAdapter::GetObject(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                                    bool deviceBigEndian, bool ignoreCacheAge,
                                                    kz::orba::VortaORBAObject& object) {
    StepObserver* const observer = tObserver;
    KZM_TELL(observer, {.kind = StepKind::OBJECT});
    if (!mValueAdapter) {
        KZM_TELL(observer, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED});
        KZM_LOG(ERROR, "%s: Pointer for value is empty", __func__);
        return Status::INVALID_ARGUMENT;
    }
    auto quality = DeviceCache::QUALITY_UNINITIALISED;
    nlohmann::json value;
    const auto status =
        GetValueOf("value", *mValueAdapter, {cache, deviceBigEndian, ignoreCacheAge, &NO_URN}, quality, value);
    KZM_TELL(observer, {.kind = StepKind::VALUE, .quality = quality, .status = status, .value = &value});
    if (status == Status::NOT_AVAILABLE) {
        KZM_LOG_TRACE("%s: Did not read from cache", __func__);
    } else if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "%s: Failed to get value from value adapter, status=%s", __func__,
                Logging::Text(status).c_str());
    } else {
        mElementPath.SetAttribute(object, "value", std::move(value));
    }
    return status;
}

std::set<std::uint8_t>& SimpleObjectAdapter::GetFrameIndexes() {
    return mFrameIndexes;
}

kz::orba::StatusCode SimpleObjectAdapter::ComputeFrameIndexes() {
    if (!mValueAdapter) {
        KZM_LOG(ERROR, "%s: Mandatory attribute pointer for value is empty, status = %s", __func__,
                Logging::Text(Status::INVALID_ARGUMENT).c_str());
        return Status::INVALID_ARGUMENT;
    }
    return mValueAdapter->ComputeAndGetFrameIndexes(mFrameIndexes);
}

Device::ModbusMeasurementInformation SimpleObjectAdapter::GetModbusMeasurementInformation() const {
    KZM_LOG(ERROR, "[%s] Should not be called, empty value returned", __func__);
    return {};
}

}  // namespace kzm::ModbusDeviceModel::DataModel
