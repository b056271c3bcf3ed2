#include "Device/DeviceModel.h"

#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/MeasurementInformationOf.h"
#include "Device/CustomAlarmObject.h"
#include "Device/DynamicVorta.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "dictionary/DeviceElementLookUp.h"
#include "edm/modbus/Vorta.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusDeviceModel::Device {

using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;

namespace {

constexpr const char* LOG_MODULE = "Device::DeviceModel";
constexpr const char* GENERIC_NUMERICAL_CLASS = "$iot.measurement.NumericalMeasurementValue";

// False for an id without an alias where one belongs, and for an alias that cannot be decoded.
bool SplitId(const std::string& id, std::string& name, std::string& alias) {
    try {
        return edm::modbus::Vorta::GetIoTNameAndAlias(id, name, alias) == Status::SUCCESS;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

DeviceModel::DeviceModel(ObjectAdapters&& adapters, std::vector<DeviceProfile::FrameData>&& frames, TextByName&& units,
                         TextByName&& classNames, ComputedAlarms&& computedAlarms, bool bigEndian)
    : mFrames(std::move(frames)),
      mBigEndian(bigEndian),
      mUnits(std::move(units)),
      mComputedAlarms(std::move(computedAlarms)),
      mClassNames(std::move(classNames)) {
    mObjectAdapters.reserve(adapters.size());
    while (!adapters.empty()) {
        auto next = adapters.extract(adapters.begin());
        if (next.mapped()) {
            next.mapped()->ComputeFrameIndexes();
        }
        mObjectAdapters.emplace(std::move(next.key()), std::move(next.mapped()));
    }
}

DeviceModel::DeviceModel(std::shared_ptr<Elements>& elements, std::vector<DeviceProfile::FrameData>&& frames,
                         TextByName&& units, TextByName&& classNames, ComputedAlarms&& computedAlarms, bool bigEndian)
    : mElements(elements),
      mFrames(std::move(frames)),
      mBigEndian(bigEndian),
      mUnits(std::move(units)),
      mComputedAlarms(std::move(computedAlarms)),
      mClassNames(std::move(classNames)) {}

DeviceModel::DeviceModel(std::shared_ptr<Elements>&& elements, std::vector<DeviceProfile::FrameData>&& frames,
                         std::shared_ptr<ServiceSources>&& serviceSources, bool bigEndian)
    : mElements(std::move(elements)),
      mServiceSources(std::move(serviceSources)),
      mFrames(std::move(frames)),
      mBigEndian(bigEndian) {}

DeviceModel::~DeviceModel() {
    KZM_LOG(INFORMATION, "DeviceModel::~DeviceModel Called");
}

ModbusMeasurementInformation DeviceModel::GetMeasurementInformation(const std::string& suffix) const {
    std::string name;
    std::string alias;
    if (!SplitId(suffix, name, alias)) {
        KZM_LOG(ERROR, "[%s] Failed to get IoT Name and Alias for shortId=%s", __func__, suffix.c_str());
        return {};
    }
    KZM_LOG_TRACE("%s: Measure shortId=%s, name=%s, alias=%s", __func__, suffix.c_str(), name.c_str(), alias.c_str());
    ModbusMeasurementInformation information;
    const auto found = mObjectAdapters.find(KeyView(name, alias));
    const auto elements = GetElements(name, alias);
    if (found != mObjectAdapters.end() && found->second) {
        information = found->second->GetModbusMeasurementInformation();
    } else if (found == mObjectAdapters.end() && elements.size() == 1 && elements.front()) {
        information = DataModel::MeasurementInformationOf(*elements.front());
        if (elements.front()->GetFrameIndex() < mFrames.size()) {
            information.mFunctionCode = mFrames[elements.front()->GetFrameIndex()].mFunctionCode;
        }
    } else {
        KZM_LOG(ERROR, "[%s] Failed to get Measurement Information for suffix=%s, iotName='%s', alias='%s'", __func__,
                suffix.c_str(), name.c_str(), alias.c_str());
        return information;
    }
    GetUnit(suffix, information.mUnit);
    return information;
}

std::vector<std::shared_ptr<DataModel::ElementData>> DeviceModel::GetElements(const std::string& name,
                                                                              const std::string& alias) const {
    std::vector<std::shared_ptr<DataModel::ElementData>> elements;
    if (mElements) {
        const auto [first, last] = mElements->equal_range({name, alias});
        for (auto element = first; element != last; ++element) {
            elements.push_back(element->second);
        }
    }
    return elements;
}

ServiceMapping DeviceModel::GetServiceMapping(const std::string& name, const std::string& alias) const {
    if (!mServiceSources) {
        KZM_LOG(WARNING, "DeviceModel::GetServiceMapping %s.%s NOT FOUND (NO SERVICE MAPPING)", name.c_str(),
                alias.c_str());
        return ServiceMapping(mFrames);
    }
    const auto found = mServiceSources->find({name, alias});
    if (found == mServiceSources->end() || !found->second) {
        KZM_LOG(WARNING, "DeviceModel::GetServiceMapping %s.%s NOT FOUND", name.c_str(), alias.c_str());
        return ServiceMapping(mFrames);
    }
    KZM_LOG(INFORMATION, "DeviceModel::GetServiceMapping %s.%s found", name.c_str(), alias.c_str());
    return ServiceMapping(*found->second, mFrames);
}

const std::vector<DeviceProfile::FrameData>& DeviceModel::GetFrames() const {
    return mFrames;
}

kz::orba::StatusCode DeviceModel::GetCustomAlarmVortaObjectValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
    kz::orba::VortaORBAObject& object, const DataModel::PreviousMeasurements& previous) const {
    const auto alarm = GetComputedAlarmElement({object.GetName(), object.GetAlias()});
    if (!alarm) {
        const auto& id = object.GetId();
        KZM_LOG(ERROR, "[%s] Custom alarm not found : %s", __func__, id.c_str());
        return Status::INVALID_ARGUMENT;
    }
    CustomAlarmObject structure(object.GetValue());
    structure.WriteIdentity(*alarm);
    if (!structure.HasState()) {
        KZM_LOG(ERROR, "[%s] Missing elements in custom device VORTA response structure", __func__);
        return Status::OUT_OF_RANGE;
    }
    auto quality = DeviceCache::QUALITY_BAD;
    nlohmann::json state;
    const auto status = alarm->BuildVortaObjectValue(cache, IsBigEndian(), ignoreCacheAge, previous, quality, state);
    // A chain that gives no boolean is a success without a state.
    if (status == Status::SUCCESS && !state.is_null()) {
        structure.WriteState(std::move(state));
    }
    structure.WriteQuality(quality);
    return status;
}

kz::orba::StatusCode DeviceModel::GetVortaObjectValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
    kz::orba::VortaORBAObject& object) const {
    const auto& name = object.GetName();
    const auto& alias = object.GetAlias();
    DataModel::VortaObjectAdapter* adapter = nullptr;
    const auto status = FindAdapter(__func__, name, alias, adapter);
    return adapter ? adapter->GetObject(cache, IsBigEndian(), ignoreCacheAge, object) : status;
}

kz::orba::StatusCode DeviceModel::FindAdapter(const char* operation, std::string_view name, std::string_view alias,
                                              DataModel::VortaObjectAdapter*& adapter) const {
    const auto found = mObjectAdapters.find(KeyView(name, alias));
    if (found == mObjectAdapters.end()) {
        KZM_LOG_TRACE("%s: VortaObjectAdapter not found for '%s', iot name ='%s', status = %s", operation,
                      mModelName.c_str(), std::string(name).c_str(), Logging::Text(Status::NOT_FOUND).c_str());
        return Status::NOT_FOUND;
    }
    if (!found->second) {
        KZM_LOG(ERROR, "%s: Object adapter is null for '%s', iot name = '%s'", operation, mModelName.c_str(),
                std::string(name).c_str());
        return Status::INVALID_ARGUMENT;
    }
    adapter = found->second.get();
    return Status::SUCCESS;
}

kz::orba::StatusCode DeviceModel::GetFramesForIoTNameAndAlias(const std::string& name, const std::string& alias,
                                                              Frames& frames) const {
    const auto elements = GetElements(name, alias);
    for (const auto& element : elements) {
        if (element) {
            AddFrames({element->GetFrameIndex()}, frames);
        }
    }
    if (!elements.empty()) {
        return Status::SUCCESS;
    }
    DataModel::VortaObjectAdapter* adapter = nullptr;
    const auto status = FindAdapter(__func__, name, alias, adapter);
    if (adapter) {
        AddFrames(adapter->GetFrameIndexes(), frames);
    }
    return status;
}

// Indexes past the frames are skipped; that of an element in no frame is one of them unless there are 256 frames.
void DeviceModel::AddFrames(const std::set<std::uint8_t>& frameIndexes, Frames& frames) const {
    for (const std::uint8_t index : frameIndexes) {
        if (index != DataModel::ElementData::INVALID_FRAME_INDEX && index < mFrames.size()) {
            frames.emplace(index, &mFrames[index]);
        }
    }
}

DeviceModel::Frames DeviceModel::GetDependencyFrame(const std::string& name, const std::string& alias) const {
    Frames frames;
    if (const auto alarm = GetComputedAlarmElement({name, alias})) {
        AddFrames(alarm->GetFrameIndexes(), frames);
        return frames;
    }
    const auto adapter = mObjectAdapters.find(KeyView(name, alias));
    if (adapter != mObjectAdapters.end()) {
        if (adapter->second) {
            AddFrames(adapter->second->GetFrameIndexes(), frames);
        } else {
            KZM_LOG(ERROR, "[%s] VortaObjectAdapter is null for '%s', iot name = '%s'", __func__, mModelName.c_str(),
                    name.c_str());
        }
        return frames;
    }
    GetFramesForIoTNameAndAlias(name, alias, frames);
    if (!frames.empty()) {
        AddDependencies(GetElements(name, alias), frames);
    }
    return frames;
}

void DeviceModel::AddDependencies(const std::vector<std::shared_ptr<DataModel::ElementData>>& elements,
                                  Frames& frames) const {
    for (const auto& element : elements) {
        const auto dependencies = element ? element->GetLogicCodeDependency() : nullptr;
        if (!dependencies) {
            continue;
        }
        for (const DataModel::LogicCodeDependency& dependency : *dependencies) {
            if (mElements->count({dependency.name, dependency.alias}) > 0) {
                GetFramesForIoTNameAndAlias(dependency.name, dependency.alias, frames);
            }
        }
    }
}

bool DeviceModel::IsBigEndian() const {
    return mBigEndian;
}

kz::orba::StatusCode DeviceModel::GetUnit(const std::string& name, std::string& unit) const {
    const auto found = mUnits.find(name);
    if (found == mUnits.end()) {
        unit.clear();
        return Status::NOT_FOUND;
    }
    unit = found->second;
    return Status::SUCCESS;
}

kz::orba::StatusCode DeviceModel::GetClassName(const std::string& name, std::string& className) const {
    className = DeviceElementLookUp::GetClass(name);
    if (className != GENERIC_NUMERICAL_CLASS) {
        return Status::SUCCESS;
    }
    const auto found = mClassNames.find(name);
    if (found == mClassNames.end()) {
        KZM_LOG(ERROR, "[%s] Measurement class name not found for vortaSuffix=%s", __func__, name.c_str());
        return Status::NOT_FOUND;
    }
    className = found->second;
    return Status::SUCCESS;
}

kz::orba::StatusCode DeviceModel::GetComputedAlarmInstantaneousness(const Key& key, bool& instantaneous) const {
    const auto alarm = GetComputedAlarmElement(key);
    if (!alarm) {
        return Status::OUT_OF_RANGE;
    }
    instantaneous = !alarm->IsHasChangedAlarm();
    return Status::SUCCESS;
}

std::shared_ptr<DataModel::ComputedAlarmElement> DeviceModel::GetComputedAlarmElement(const Key& key) const {
    const auto found = mComputedAlarms.find(key);
    return found == mComputedAlarms.end() ? nullptr : found->second;
}

void DeviceModel::SetEdmType() {
    mEdmType = true;
    mSubgraphs.resize(VORTA_OBJECT_CATEGORIES);
}

bool DeviceModel::IsEdmType() const {
    return mEdmType;
}

const std::vector<std::string>& DeviceModel::GetVortaSubgraph(VortaObjectCategory category) const {
    return DynamicVorta::GetVortaSubgraph(mSubgraphs, category);
}

bool DeviceModel::FindObject(VortaObjectCategory category, const std::string& name) const {
    return DynamicVorta::FindObject(mSubgraphs, category, name);
}

void DeviceModel::SetVortaSubgraph(VortaObjectCategory category, const std::vector<std::string>& names) {
    DynamicVorta::SetVortaSubgraph(mSubgraphs, category, names);
}

bool DeviceModel::IsSubgraphAvailable(VortaObjectCategory category) const {
    return DynamicVorta::IsSubgraphAvailable(mSubgraphs, category);
}

void DeviceModel::SetModelName(const std::string& modelName) {
    mModelName = modelName;
}

const std::string& DeviceModel::GetModelName() const {
    return mModelName;
}

void DeviceModel::SetModelVersion(const std::string& modelVersion) {
    mModelVersion = modelVersion;
}

const std::string& DeviceModel::GetModelVersion() const {
    return mModelVersion;
}

void DeviceModel::SetUserDefinedModel(bool userDefinedModel) {
    mUserDefinedModel = userDefinedModel;
}

bool DeviceModel::IsUserDefinedModel() const {
    return mUserDefinedModel;
}

kzm::edm::ModelBaseConcept DeviceModel::GetModelBaseConcept() const {
    return mModelBaseConcept;
}

void DeviceModel::SetModelBaseConcept(kzm::edm::ModelBaseConcept modelBaseConcept) {
    mModelBaseConcept = modelBaseConcept;
}

void DeviceModel::SetIdentification(const std::map<std::string, std::string>& identification) {
    mIdentification = identification;
}

const std::map<std::string, std::string>& DeviceModel::GetIdentification() const {
    return mIdentification;
}

}  // namespace kzm::ModbusDeviceModel::Device
