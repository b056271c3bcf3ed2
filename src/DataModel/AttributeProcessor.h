#pragma once

#include <map>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ProcessingChain.h"

namespace kzm::ModbusDeviceModel::DataModel {

// A computed attribute: its inputs, read in their device-dictionary form, are passed by name to a processing chain.
class KZM_MODBUS_EXPORT AttributeProcessor : public AttributeAdapter {
public:
    using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;  // the gateway's register cache
    // Adapters by the name of the chain parameter that they provide.
    using Inputs = std::map<std::string, std::shared_ptr<AttributeAdapter>>;

    // Inputs and chain are shared with the caller and must not change afterwards.
    AttributeProcessor(const Inputs& inputs, std::shared_ptr<ProcessingChain> chain);
    ~AttributeProcessor() override;

    kz::orba::StatusCode GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                     bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                     DeviceCache::_Quality_t& quality, nlohmann::json& value) override;
    // INVALID_ARGUMENT: no inputs, or a null one. The first input that fails ends the collection with its status; what
    // was added before stays.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // NOT_SUPPORTED: a computed value has no class of its own.
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // Not meant to be called: logs an error and returns the default record.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    // False: a label that the chain gives is already translated.
    bool HasEnumOutput() const override;

    // SUCCESS: `value` is the chain's result, or the translation of the label that it gives. `quality` is Bad if one
    // input is Bad, otherwise Good, even for a Questionable input.
    // INVALID_ARGUMENT: no inputs, only null ones, no chain, or a result that should be a label but is not a text.
    // Any other: the status of an input, of the chain, or of the label dictionary. After a failure `value` must not be
    // used, and `quality` is Bad if an input read so far was. Null inputs are skipped and logged.
    kz::orba::StatusCode GetValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                  DeviceCache::_Quality_t& quality, nlohmann::json& value, bool edm,
                                  const std::string& urn);

    // What the constructor was given.
    const Inputs& GetInputs() const { return mInputs; }

private:
    Inputs mInputs;
    std::shared_ptr<ProcessingChain> mChain;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
