#include "DataModel/AttributeConstant.h"

#include <utility>

#include "DataModel/Observation.h"
#include "Support/Log.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

constexpr const char* LOG_MODULE = "DataModel::AttributeConstant";

void TellConstant(const nlohmann::json& value) {
    KZM_TELL(tObserver, {.kind = StepKind::CONSTANT,
                         .reason = value.is_null() ? Reason::MISCONFIGURED : Reason::GOOD,
                         .value = &value});
}

}  // namespace

AttributeConstant::AttributeConstant(nlohmann::json value) : mValue(std::move(value)) {}

AttributeConstant::~AttributeConstant() = default;

kz::orba::StatusCode AttributeConstant::GetIotValue(const std::string&,
                                                    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>&, bool,
                                                    bool, DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    quality = DeviceCache::QUALITY_GOOD;
    value = mValue;
    TellConstant(value);
    KZM_LOG_TRACE("[%s] value=%s", __func__, Logging::Text(value).c_str());
    return Status::SUCCESS;
}

kz::orba::StatusCode AttributeConstant::GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>&, bool,
                                                    bool, DeviceCache::_Quality_t& quality, nlohmann::json& value) {
    quality = DeviceCache::QUALITY_GOOD;
    value = mValue;
    TellConstant(value);
    KZM_LOG_TRACE("[%s] value=%s", __func__, Logging::Text(value).c_str());
    return Status::SUCCESS;
}

kz::orba::StatusCode AttributeConstant::ComputeAndGetFrameIndexes(std::set<std::uint8_t>&) {
    return Status::SUCCESS;
}

kz::orba::StatusCode AttributeConstant::GetClassName(std::string&) const {
    return Status::NOT_SUPPORTED;
}

Device::ModbusMeasurementInformation AttributeConstant::GetModbusMeasurementInformation() const {
    KZM_LOG(ERROR, "[%s] Should not be called, empty value returned", __func__);
    return {};
}

bool AttributeConstant::HasEnumOutput() const {
    return false;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
