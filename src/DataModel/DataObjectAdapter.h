#pragma once

#include <map>
#include <string>

#include "DataModel/AttributeAdapter.h"
#include "DataModel/AttributeAdapterType.h"
#include "DataModel/ElementPath.h"
#include "DataModel/VortaObjectAdapter.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Fills one data-model object from up to four attribute adapters: its value, whether it is available, its quality and
// its date-time. It is an attribute adapter itself, so that a data object can be the input of another adapter; its
// value then follows the rules of availability and quality. Requests may run on many threads at once.
class KZM_MODBUS_EXPORT DataObjectAdapter : public VortaObjectAdapter, public AttributeAdapter {
public:
    using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;  // the gateway's register cache

    // Adapters by role.
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

    // Writes "value", "quality" and "datetime". If there is no value, "quality" becomes "Bad" and "value" stays as it
    // was. Without a timestamp adapter "datetime" is the current calendar time and the status of the value is returned:
    // SUCCESS, NOT_AVAILABLE, MEASUREMENT_NOT_AVAILABLE if its flag says so, INVALID_ARGUMENT for a missing value
    // adapter and for an adapter's NOT_FOUND, or what else an adapter gave. With a timestamp adapter its status is
    // returned instead; if it fails, "datetime" stays as it was.
    //
    // Throws what ElementPath::SetAttribute throws, and type_error 302 for a date-time under an element path that is
    // not a text.
    kz::orba::StatusCode GetObject(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                   kz::orba::VortaORBAObject& object) override;

    std::set<std::uint8_t>& GetFrameIndexes() override;
    // INVALID_ARGUMENT without adapters. The first adapter that fails ends the collection with its status (logged as an
    // error); what was added before stays.
    kz::orba::StatusCode ComputeFrameIndexes() override;
    // The value adapter's record; the default record if there is none.
    Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override;

    // The value by the rules of GetValueWithAvailabilityAndQuality. The caller's urn is not used.
    kz::orba::StatusCode GetIotValue(const std::string& urn, const Cache& cache, bool deviceBigEndian,
                                     bool ignoreCacheAge, DeviceCache::_Quality_t& quality,
                                     nlohmann::json& value) override;
    kz::orba::StatusCode GetEdmValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                     DeviceCache::_Quality_t& quality, nlohmann::json& value) override;
    // Replaces `frameIndexes` by this adapter's set; untouched on failure. A build-time operation.
    kz::orba::StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>& frameIndexes) override;
    // False: what the adapters give is already translated.
    bool HasEnumOutput() const override;
    // The value adapter's class; NOT_FOUND if there is no value adapter.
    kz::orba::StatusCode GetClassName(std::string& className) const override;

    // `edm`: the device-dictionary form. SUCCESS: `value` is set, and `quality` is the quality adapter's, or the
    // value's own if there is no such adapter. MEASUREMENT_NOT_AVAILABLE: the availability adapter gave false; nothing
    // else is read. NOT_FOUND: no value adapter. Any other: the status of the adapter that failed.
    kz::orba::StatusCode GetValueWithAvailabilityAndQuality(const Cache& cache, bool deviceBigEndian,
                                                            bool ignoreCacheAge, bool edm,
                                                            DeviceCache::_Quality_t& quality,
                                                            nlohmann::json& value) const;
    // Without an availability adapter: available. INVALID_ARGUMENT: the adapter did not give a boolean. `available` is
    // false unless the status is SUCCESS.
    kz::orba::StatusCode GetAvailability(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                         bool& available) const;
    // Without a quality adapter `useValueQuality` is true and `quality` untouched. With one it is false; `quality` is
    // Good for the text "Good", Bad for any other text, and untouched for anything but a text (logged as an error) and
    // on failure.
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
