#pragma once

#include <map>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ProcessingChain.h"

namespace kzm::ModbusDeviceModel::DataModel {

// An attribute that is computed: its inputs, read in their device-dictionary form, are the parameters of a processing
// chain, under their names.
class KZM_MODBUS_EXPORT AttributeProcessor : public AttributeAdapter {
public:
    using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;  // the gateway's register cache
    // Adapters by the name of the chain's parameter that they feed.
    using Inputs = std::map<std::string, std::shared_ptr<AttributeAdapter>>;

    // Inputs and chain are shared with the caller and must not change afterwards.
    AttributeProcessor(const Inputs& inputs, std::shared_ptr<ProcessingChain> chain);
    ~AttributeProcessor() override;

    kz::orba::StatusCode GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                     bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                     DeviceCache::_Quality_t& quality, nlohmann::json& value) override;
    // 1: no inputs, or a null one; an input's failure ends it. What was added before stays.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // 60: a computed value has no class of its own.
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // Should not be asked: logs an error and gives the default record.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    // False: the chain's labels are translated already.
    bool HasEnumOutput() const override;

    // 0: `value` is the chain's result, or what its label translates to. `quality` is Bad as soon as one input is Bad,
    // else Good. 1: no inputs, only null ones, no chain, or a result that should be a label and is no text. Any other:
    // the status of the input, of the chain, or of the label dictionary. `value` is of no use after a failure.
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
