#pragma once

#include <map>
#include <string>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/AttributeAdapterType.h"
#include "DataModel/ElementPath.h"
#include "DataModel/VortaObjectAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Fills one data-model object from up to four attribute adapters: its value, whether it is available, its quality and
// its date-time. It is an attribute adapter as well, so that a data object can feed another adapter; its value then
// comes with the rules of quality and availability applied.
class KZM_MODBUS_EXPORT DataObjectAdapter : public VortaObjectAdapter, public AttributeAdapter {
public:
    using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;  // the gateway's register cache

    using Adapters = std::map<AttributeAdapterType, std::shared_ptr<AttributeAdapter>>;

    // `elementPath`: see ElementPath. `urn` identifies the attribute for all four adapters.
    DataObjectAdapter(const std::string& elementPath, const std::string& urn);
    ~DataObjectAdapter() override;

    // Gives a role its adapter, while the model is built. OUT_OF_RANGE: the adapter is null, is this adapter itself, or
    // reads this adapter through the roles of data objects and the inputs of processors; a request would never end.
    // ALREADY_SET: the role has an adapter, which stays. Each is logged as an error.
    kz::orba::StatusCode SetAdapter(AttributeAdapterType type, const std::shared_ptr<AttributeAdapter>& adapter);
    // The adapters that have been set.
    const Adapters& GetAdapters() const { return mAdapters; }

    // Writes "value", "quality" and "datetime". Where no value can be had, "quality" becomes "Bad" and "value" stays as
    // it was. Without a timestamp adapter "datetime" is the current calendar time and the value's status is returned:
    // 0, 42 no value, 63 not available, 1 no value adapter or an adapter's 44, or what an adapter gave. With one, its
    // status is returned instead; when it fails, "datetime" stays as it was. Throws the JSON library's error for an
    // element path that the object's structure does not admit, and type_error 302 for a date-time under an element path
    // that is no text.
    kz::orba::StatusCode GetObject(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                   kz::orba::VortaORBAObject& object) override;

    std::set<std::uint8_t>& GetFrameIndexes() override;
    // 1 without adapters; an adapter's failure ends it, what was added before stays.
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // The value adapter's record; the default record without one.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

    // The value by the rules of GetValueWithAvailabilityAndQuality. The caller's urn is not used.
    kz::orba::StatusCode GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                     bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                     DeviceCache::_Quality_t& quality, nlohmann::json& value) override;
    // Replaces `frameIndexes` by this adapter's set; untouched on failure. A build-time operation.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // False: what the adapters give is translated already.
    bool HasEnumOutput() const override;
    // The value adapter's; 44 without one.
    kz::orba::StatusCode GetClassName(std::string& className) const override;

    // 0: `value` is set, and `quality` the quality adapter's, or the value's own where there is no such adapter. 63:
    // not available, nothing is read. 44: no value adapter. Any other: what the adapter that failed gave.
    kz::orba::StatusCode GetValueWithAvailabilityAndQuality(const Cache& cache, bool deviceBigEndian,
                                                            bool ignoreCacheAge, bool edm,
                                                            DeviceCache::_Quality_t& quality,
                                                            nlohmann::json& value) const;
    // Without an adapter: available. 1: the adapter gave no boolean. `available` is false unless 0 is returned.
    kz::orba::StatusCode GetAvailability(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                         bool& available) const;
    // Without an adapter `useValueQuality` is true and `quality` untouched. With one it is false; `quality` is Good for
    // the text "Good", Bad for any other text, untouched for what is no text (logged) and on failure.
    kz::orba::StatusCode GetQuality(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                    DeviceCache::_Quality_t& quality, bool& useValueQuality) const;
    // Writes the attribute "quality": "Bad".
    void SetBadAttributeQuality(kz::orba::VortaORBAObject& object);

private:
    ElementPath mElementPath;
    std::string mUrn;
    Adapters mAdapters;
    std::set<std::uint8_t> mFrameIndexes;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
