#pragma once

#include <string_view>
#include <unordered_map>

#include "DataModel/ObjectKey.h"
#include "DataModel/VortaObjectAdapter.h"
#include "DataModel/pair_hash.h"
#include "Device/IDeviceModel.h"

namespace kzm::ModbusDeviceModel::Device {

// The device model that a profile loader builds; see IDeviceModel for its operations.
class KZM_MODBUS_EXPORT DeviceModel : public IDeviceModel {
public:
    // The parts of a model by (name, alias) or by name alone, and frames by their index.
    using Key = std::pair<std::string, std::string>;
    using Elements = std::unordered_multimap<Key, std::shared_ptr<DataModel::ElementData>, DataModel::pair_hash>;
    using ObjectAdapters = std::map<Key, std::shared_ptr<DataModel::VortaObjectAdapter>>;
    using ComputedAlarms = std::map<Key, std::shared_ptr<DataModel::ComputedAlarmElement>>;
    using ServiceSources = std::unordered_map<DataModel::ObjectKey, std::shared_ptr<DataModel::ServiceSourceMapping>>;
    using TextByName = std::map<std::string, std::string>;
    using Frames = std::map<std::uint8_t, const DeviceProfile::FrameData*>;

    // A model of object adapters. Computes the frame indexes of every adapter; an adapter that fails logs why and keeps
    // those that it found. `units`, `classNames`: by measurement name.
    DeviceModel(ObjectAdapters&& adapters, std::vector<DeviceProfile::FrameData>&& frames, TextByName&& units,
                TextByName&& classNames, ComputedAlarms&& computedAlarms, bool bigEndian);
    // A model of elements, which are shared with the caller.
    DeviceModel(std::shared_ptr<Elements>& elements, std::vector<DeviceProfile::FrameData>&& frames, TextByName&& units,
                TextByName&& classNames, ComputedAlarms&& computedAlarms, bool bigEndian);
    // A model of elements that serve services.
    DeviceModel(std::shared_ptr<Elements>&& elements, std::vector<DeviceProfile::FrameData>&& frames,
                std::shared_ptr<ServiceSources>&& serviceSources, bool bigEndian);
    DeviceModel(const DeviceModel&) = delete;
    DeviceModel& operator=(const DeviceModel&) = delete;

    ModbusMeasurementInformation GetMeasurementInformation(const std::string& suffix) const override;
    std::vector<std::shared_ptr<DataModel::ElementData>> GetElements(const std::string& name,
                                                                     const std::string& alias) const override;
    ServiceMapping GetServiceMapping(const std::string& name, const std::string& alias) const override;
    const std::vector<DeviceProfile::FrameData>& GetFrames() const override;
    kz::orba::StatusCode GetCustomAlarmVortaObjectValue(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
        kz::orba::VortaORBAObject& object, const DataModel::PreviousMeasurements& previous) const override;
    kz::orba::StatusCode GetVortaObjectValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                             bool ignoreCacheAge, kz::orba::VortaORBAObject& object) const override;
    Frames GetDependencyFrame(const std::string& name, const std::string& alias) const override;
    bool IsBigEndian() const override;
    kz::orba::StatusCode GetUnit(const std::string& name, std::string& unit) const override;
    kz::orba::StatusCode GetClassName(const std::string& name, std::string& className) const override;
    kz::orba::StatusCode GetComputedAlarmInstantaneousness(const Key& key, bool& instantaneous) const override;
    std::shared_ptr<DataModel::ComputedAlarmElement> GetComputedAlarmElement(const Key& key) const override;
    void SetEdmType() override;
    bool IsEdmType() const override;
    const std::vector<std::string>& GetVortaSubgraph(VortaObjectCategory category) const override;
    bool FindObject(VortaObjectCategory category, const std::string& name) const override;
    void SetVortaSubgraph(VortaObjectCategory category, const std::vector<std::string>& names) override;
    bool IsSubgraphAvailable(VortaObjectCategory category) const override;
    ~DeviceModel() override;
    void SetModelName(const std::string& modelName) override;
    const std::string& GetModelName() const override;
    void SetModelVersion(const std::string& modelVersion) override;
    const std::string& GetModelVersion() const override;
    void SetUserDefinedModel(bool userDefinedModel) override;
    bool IsUserDefinedModel() const override;
    kzm::edm::ModelBaseConcept GetModelBaseConcept() const override;
    void SetModelBaseConcept(kzm::edm::ModelBaseConcept modelBaseConcept) override;
    void SetIdentification(const std::map<std::string, std::string>& identification) override;
    const std::map<std::string, std::string>& GetIdentification() const override;

    // Adds the frames of the elements of (name, alias) to `frames`, or if there are none those of its object adapter.
    // The pointers refer into the model. NOT_FOUND: there is neither. INVALID_ARGUMENT: the adapter is null (logged as
    // an error). `frames` is then untouched.
    kz::orba::StatusCode GetFramesForIoTNameAndAlias(const std::string& name, const std::string& alias,
                                                     Frames& frames) const;

private:
    // Finds a key without building a pair of strings.
    using KeyView = std::pair<std::string_view, std::string_view>;
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(const KeyView& key) const {
            return std::hash<std::string_view>{}(key.first) * 31 + std::hash<std::string_view>{}(key.second);
        }
    };
    struct KeyEqual {
        using is_transparent = void;
        bool operator()(const KeyView& left, const KeyView& right) const { return left == right; }
    };

    std::shared_ptr<Elements> mElements;
    std::shared_ptr<ServiceSources> mServiceSources;
    std::vector<DeviceProfile::FrameData> mFrames;
    bool mBigEndian;
    bool mEdmType = false;
    TextByName mUnits;
    ComputedAlarms mComputedAlarms;
    std::unordered_map<Key, std::shared_ptr<DataModel::VortaObjectAdapter>, KeyHash, KeyEqual> mObjectAdapters;
    TextByName mClassNames;
    std::string mModelVersion;
    bool mUserDefinedModel = false;
    kzm::edm::ModelBaseConcept mModelBaseConcept{};
    std::string mModelName;
    std::vector<std::vector<std::string>> mSubgraphs;
    std::map<std::string, std::string> mIdentification;
};

}  // namespace kzm::ModbusDeviceModel::Device
