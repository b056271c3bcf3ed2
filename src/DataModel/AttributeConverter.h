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
    // SUCCESS: `value` is the decoded value and `quality` the cache's, which may be Bad or Questionable; judging it is
    // left to the caller.
    // INVALID_ARGUMENT: no cache, or the element is in no frame; outputs untouched, logged as an error.
    // NOT_AVAILABLE: the frame is not fresh (outputs untouched) or was never received (`quality` Uninitialised), the
    // registers hold the "not available" pattern or a value out of range (`value` null), or they cannot be decoded
    // (`value` untouched). More bytes than the buffer of 256 holds and any exception of the cache or of the decoding
    // are NOT_AVAILABLE too, and logged as errors.
    static kz::orba::StatusCode GetValueFromElementData(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool deviceBigEndian, bool ignoreCacheAge,
        ElementData& element, DeviceCache::_Quality_t& quality, nlohmann::json& value);

    // Statuses of GetValueFromElementData; with enumeration pairs also NOT_AVAILABLE if the decoded value is not a
    // text, and the dictionary's status for an unknown label. `value` is then what was decoded.
    kz::orba::StatusCode GetIotValue(const std::string& urn,
                                     const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                     bool deviceBigEndian, bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    // INVALID_ARGUMENT, and nothing added, if the element is in no frame.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // The class of the logic code; NOT_FOUND for a code without a class.
    kz::orba::StatusCode GetClassName(std::string& className) const override;
    // The element's settings; see MeasurementInformationOf.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;
    // Whether there are enumeration pairs.
    bool HasEnumOutput() const override;
    // ElementData::ToJson as text.
    virtual std::string ToJson();

private:
    bool mEnumOutput;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
