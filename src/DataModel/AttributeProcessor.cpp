#include "DataModel/AttributeProcessor.h"

#include <utility>

#include "DataModel/ValueRequest.h"
#include "Support/FlatObject.h"
#include "Support/Log.h"
#include "Support/Status.h"

namespace kzm::ModbusDeviceModel::DataModel {

using kz::orba::StatusCode;
using nlohmann::json;

namespace {

constexpr const char* LOG_MODULE = "DataModel::AttributeProcessor";
constexpr const char* GET_VALUE = "GetValue";
const std::string NO_URN;

// Stores the value of one input under its name. A Bad input makes `quality` Bad, but its value is used.
StatusCode ReadInput(const std::string& name, AttributeAdapter& adapter, const ValueRequest& request,
                     DeviceCache::_Quality_t& quality, json& parameters) {
    auto inputQuality = DeviceCache::QUALITY_UNINITIALISED;
    json value;
    const auto status = GetValueOf(name, adapter, request, inputQuality, value);
    if (status != Status::SUCCESS) {
        KZM_TELL(tObserver, {.kind = StepKind::INPUT, .reason = Reason::INPUT_MISSING, .status = status, .text = name});
        KZM_LOG_AT(status == Status::NOT_AVAILABLE ? Logging::INFORMATION : Logging::ERROR,
                   "[%s] GetEdmValue failed for input='%s', quality='%s', value='%s', status = %s", GET_VALUE,
                   name.c_str(), ConvertToString(inputQuality).c_str(), Logging::Text(value).c_str(),
                   Logging::Text(status).c_str());
        return status;
    }
    if (inputQuality == DeviceCache::QUALITY_BAD) {
        quality = DeviceCache::QUALITY_BAD;
        KZM_LOG(ERROR, "[%s] Bad quality for input='%s'", GET_VALUE, name.c_str());
    }
    parameters[name] = std::move(value);
    return status;
}

// Without its chain or an input a computation is misconfigured.
void TellResult(StepObserver& observer, StatusCode status, bool isComplete, const json& parameters,
                const json& result) {
    observer.See({.kind = StepKind::PARAMETERS, .value = &parameters});
    const auto why = isComplete ? Reason::CANNOT_COMPUTE : Reason::MISCONFIGURED;
    observer.See({.kind = StepKind::RESULT,
                  .reason = status == Status::SUCCESS && !result.is_null() ? Reason::GOOD : why,
                  .status = status,
                  .value = &result});
}

// Null inputs are skipped; INVALID_ARGUMENT if there are no others.
StatusCode ReadInputs(const AttributeProcessor::Inputs& inputs, const ValueRequest& request,
                      DeviceCache::_Quality_t& quality, json& parameters) {
    auto status = Status::INVALID_ARGUMENT;
    for (const auto& [name, adapter] : inputs) {
        if (!adapter) {
            KZM_TELL(tObserver, {.kind = StepKind::INPUT, .reason = Reason::MISCONFIGURED, .text = name});
            KZM_LOG(ERROR, "[%s] Missing input value for input='%s'", GET_VALUE, name.c_str());
            continue;
        }
        status = ReadInput(name, *adapter, request, quality, parameters);
        if (status != Status::SUCCESS) {
            break;
        }
    }
    return status;
}

void TellComputation(const AttributeProcessor::Inputs& inputs, const ProcessingChain* chain) {
    const std::string_view name = chain ? chain->GetName() : std::string_view();
    const auto reason = inputs.empty() ? Reason::MISCONFIGURED : Reason::GOOD;
    KZM_TELL(tObserver, {.kind = StepKind::COMPUTATION, .reason = reason, .text = name});
}

void TellTranslation(StepObserver& observer, StatusCode status, const json& result, const json& value) {
    const bool isLabel = result.is_string();
    const auto why = isLabel ? Reason::NO_TRANSLATION : Reason::CANNOT_COMPUTE;
    const std::string_view label = isLabel ? result.get_ref<const std::string&>() : std::string_view();
    observer.See({.kind = StepKind::TRANSLATED,
                  .reason = status == Status::SUCCESS ? Reason::GOOD : why,
                  .status = status,
                  .text = label,
                  .value = &value});
}

StatusCode TranslateResult(const std::string* urn, const json& result, json& value) {
    const auto status = result.is_string() ? TranslateLabel(urn, result.get_ref<const std::string&>(), value)
                                           : Status::INVALID_ARGUMENT;
    if (StepObserver* const observer = tObserver) [[unlikely]] {
        TellTranslation(*observer, status, result, value);
    }
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "[%s] Failed to convert result %s to iot value, status = %s", GET_VALUE,
                Logging::Text(result).c_str(), Logging::Text(status).c_str());
    }
    return status;
}

}  // namespace

AttributeProcessor::AttributeProcessor(const Inputs& inputs, std::shared_ptr<ProcessingChain> chain)
    : mInputs(inputs), mChain(std::move(chain)) {}

AttributeProcessor::~AttributeProcessor() = default;

StatusCode AttributeProcessor::GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                           bool ignoreCacheAge, DeviceCache::_Quality_t& quality, json& value) {
    return GetValue(cache, deviceBigEndian, ignoreCacheAge, quality, value, /*edm=*/false, urn);
}

StatusCode AttributeProcessor::GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                           DeviceCache::_Quality_t& quality, json& value) {
    return GetValue(cache, deviceBigEndian, ignoreCacheAge, quality, value, /*edm=*/true, NO_URN);
}

StatusCode AttributeProcessor::GetValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                        DeviceCache::_Quality_t& quality, json& value, bool edm,
                                        const std::string& urn) {
    quality = DeviceCache::QUALITY_GOOD;
    KZM_LOG_TRACE("[%s] urn:'%s', nb of input values = %zu", GET_VALUE, urn.c_str(), mInputs.size());
    FlatObject inputs;
    json& parameters = inputs.Get();
    TellComputation(mInputs, mChain.get());
    auto status = ReadInputs(mInputs, {cache, deviceBigEndian, ignoreCacheAge, nullptr}, quality, parameters);
    if (status != Status::SUCCESS) {
        return status;
    }
    json result;
    status = mChain ? mChain->Execute(parameters, result) : Status::INVALID_ARGUMENT;
    if (StepObserver* const observer = tObserver) [[unlikely]] {
        const bool isComplete = mChain && parameters.size() == mInputs.size();
        TellResult(*observer, status, isComplete, parameters, result);
    }
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "[%s] Processing chain execution failed, status = %s", GET_VALUE, Logging::Text(status).c_str());
        return status;
    }
    if (!mChain->HasEnumOutput()) {
        value = result;
    } else {
        status = TranslateResult(edm ? nullptr : &urn, result, value);
        if (status != Status::SUCCESS) {
            return status;
        }
    }
    KZM_LOG_TRACE(
        "[%s] Executed processing chain '%s' with parameters=%s, result=%s, value=%s, quality=%s, status = %s",
        GET_VALUE, mChain->GetName().c_str(), Logging::Text(parameters).c_str(), Logging::Text(result).c_str(),
        Logging::Text(value).c_str(), ConvertToString(quality).c_str(), Logging::Text(status).c_str());
    return status;
}

StatusCode AttributeProcessor::ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) {
    if (mInputs.empty()) {
        return Status::INVALID_ARGUMENT;
    }
    for (const auto& [name, adapter] : mInputs) {
        if (!adapter) {
            KZM_LOG(ERROR, "[%s]: Input value is null, status = %s", __func__,
                    Logging::Text(Status::INVALID_ARGUMENT).c_str());
            return Status::INVALID_ARGUMENT;
        }
        // Its own set, because a data object adapter replaces the content of the set that it is given.
        std::set<std::uint8_t> inputsFrames;
        const auto status = adapter->ComputeAndGetFrameIndexes(inputsFrames);
        frameIndexes.merge(inputsFrames);
        if (status != Status::SUCCESS) {
            KZM_LOG(ERROR, "[%s]: Failed to get frames for '%s', status = %s", __func__, name.c_str(),
                    Logging::Text(status).c_str());
            return status;
        }
    }
    return Status::SUCCESS;
}

StatusCode AttributeProcessor::GetClassName(std::string&) const {
    return Status::NOT_SUPPORTED;
}

Device::ModbusMeasurementInformation AttributeProcessor::GetModbusMeasurementInformation() const {
    KZM_LOG(ERROR, "[%s] Should not be called, empty value returned", __func__);
    return {};
}

bool AttributeProcessor::HasEnumOutput() const {
    return false;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
