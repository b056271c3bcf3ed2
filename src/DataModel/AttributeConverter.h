#pragma once

#include "DataModel/AttributeAdapter.h"
#include "DataModel/ElementData.h"

namespace kzm::ModbusDeviceModel::DataModel {

// An attribute that is decoded from one register element. With enumeration pairs, the decoded label is translated into
// the data-model or device-dictionary value by the platform's label dictionaries.
class KZM_MODBUS_EXPORT AttributeConverter : public AttributeAdapter, private ElementData {
public:
    // The arguments of ElementData without the attribute path.
    AttributeConverter(std::uint16_t registerAddress, std::uint8_t numberOfRegisters,
                       std::shared_ptr<std::vector<std::uint8_t>> bitmask, double scaleFactor,
                       std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
                       std::uint8_t frameIndex, float offset,
                       std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs,
                       ByteOrderingEnum byteOrdering, bool validityCheckEnabled);
    ~AttributeConverter() override;

    // Reads an element's registers from the cache and decodes them.
    //
    // 0: `value` is the decoded value, `quality` the cache's, which may be Bad or Questionable: judging it is the
    // caller's business. 1: no cache, or the element is in no frame; both outputs untouched; logged as an error. 42:
    // the frame is out of date (outputs untouched) or was never received (`quality` Uninitialised), the registers mean
    // "not available" or a value that cannot be had (`value` null), or cannot be decoded (`value` untouched). An
    // exception of the cache or of the decoding is 42 as well, and logged as an error.
    static kz::orba::StatusCode GetValueFromElementData(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian, bool ignoreCacheAge,
        ElementData& element, DeviceCache::_Quality_t& quality, nlohmann::json& value);

    // Statuses of GetValueFromElementData; with enumeration pairs also 42 when the decoded value is no text, and the
    // dictionary's own status for an unknown label.
    kz::orba::StatusCode GetIotValue(const std::string& urn,
                                     const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    // 1, and nothing added, when the element is in no frame.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // By the logic code; 44 for a code without a class.
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // The element as it was given, without function code and unit.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    // Whether there are enumeration pairs.
    bool HasEnumOutput() const override;
    // ElementData::ToJson as text.
    virtual std::string ToJson();

private:
    bool mEnumOutput;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
