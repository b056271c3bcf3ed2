#include "Device/DeviceModel.h"

#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/MeasurementInformationOf.h"
#include "DataModel/Observation.h"
#include "Device/CustomAlarmObject.h"
#include "Device/DynamicVorta.h"
#include "Support/Log.h"
#include "Support/Status.h"
#include "dictionary/DeviceElementLookUp.h"
#include "edm/modbus/Vorta.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusDeviceModel::Device {

using DataModel::ElementData;
using DataModel::VortaObjectAdapter;
using DeviceProfile::FrameData;
using kz::orba::StatusCode;
using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;

namespace {

constexpr const char* LOG_MODULE = "Device::DeviceModel";
constexpr const char* GENERIC_NUMERICAL_CLASS = "$iot.measurement.NumericalMeasurementValue";

// False for an id that lacks its alias and for an alias that cannot be decoded.
bool SplitId(const std::string& id, std::string& name, std::string& alias) {
    try {
        return edm::modbus::Vorta::GetIoTNameAndAlias(id, name, alias) == Status::SUCCESS;
    } catch (const std::exception&) {
        return false;
    }
}

// A destructor cannot be unwound, so the thread is not cancelled while it prints the line.
void LogDestruction() {
    int state = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    KZM_LOG(INFORMATION, "DeviceModel::~DeviceModel Called");
    pthread_setcancelstate(state, nullptr);
}

// An object or alarm that the model does not have, or not whole.
void TellMissing(StatusCode status) {
    using namespace DataModel;
    KZM_TELL(tObserver, {.kind = StepKind::FAILURE, .reason = Reason::MISCONFIGURED, .status = status});
}

// Null for an element that is in no frame and for an index past the frames.
const FrameData* FrameAt(const std::vector<FrameData>& frames, std::uint8_t index) {
    return index != ElementData::INVALID_FRAME_INDEX && index < frames.size() ? &frames[index] : nullptr;
}

void AddFrame(const std::vector<FrameData>& frames, std::uint8_t index, DeviceModel::Frames& found) {
    if (const FrameData* const frame = FrameAt(frames, index)) {
        found.emplace(index, frame);
    }
}

void AddFrames(const std::vector<FrameData>& frames, const std::set<std::uint8_t>& indexes,
               DeviceModel::Frames& found) {
    for (const std::uint8_t index : indexes) {
        AddFrame(frames, index, found);
    }
}

// Adds the frames of the elements that one element depends on, if the model has them.
void AddDependencies(const DeviceModel& model, const DeviceModel::Elements& elements, const ElementData& element,
                     DeviceModel::Frames& found) {
    const auto dependencies = element.GetLogicCodeDependency();
    if (!dependencies) {
        return;
    }
    for (const DataModel::LogicCodeDependency& dependency : *dependencies) {
        if (elements.count({dependency.name, dependency.alias}) > 0) {
            model.GetFramesForIoTNameAndAlias(dependency.name, dependency.alias, found);
        }
    }
}

// NOT_FOUND if there is no adapter, INVALID_ARGUMENT if it is null; logs both for `operation`.
template <typename Adapters>
StatusCode FindAdapter(const Adapters& adapters, const std::string& modelName, const char* operation,
                       const std::string& name, const std::string& alias,
                       std::shared_ptr<VortaObjectAdapter>& adapter) {
    const auto found = adapters.find(std::pair<std::string_view, std::string_view>(name, alias));
    if (found == adapters.end()) {
        KZM_LOG_TRACE("%s: VortaObjectAdapter not found for '%s', iot name ='%s', status = %s", operation,
                      modelName.c_str(), name.c_str(), Logging::Text(Status::NOT_FOUND).c_str());
        return Status::NOT_FOUND;
    }
    if (!found->second) {
        KZM_LOG(ERROR, "%s: Object adapter is null for '%s', iot name = '%s'", operation, modelName.c_str(),
                name.c_str());
        return Status::INVALID_ARGUMENT;
    }
    adapter = found->second;
    return Status::SUCCESS;
}

}  // namespace

DeviceModel::DeviceModel(ObjectAdapters&& adapters, std::vector<FrameData>&& frames, TextByName&& units,
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

DeviceModel::DeviceModel(std::shared_ptr<Elements>& elements, std::vector<FrameData>&& frames, TextByName&& units,
                         TextByName&& classNames, ComputedAlarms&& computedAlarms, bool bigEndian)
    : mElements(elements),
      mFrames(std::move(frames)),
      mBigEndian(bigEndian),
      mUnits(std::move(units)),
      mComputedAlarms(std::move(computedAlarms)),
      mClassNames(std::move(classNames)) {}

DeviceModel::DeviceModel(std::shared_ptr<Elements>&& elements, std::vector<FrameData>&& frames,
                         std::shared_ptr<ServiceSources>&& serviceSources, bool bigEndian)
    : mElements(std::move(elements)),
      mServiceSources(std::move(serviceSources)),
      mFrames(std::move(frames)),
      mBigEndian(bigEndian) {}

DeviceModel::~DeviceModel() {
    LogDestruction();
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
        if (const FrameData* const frame = FrameAt(mFrames, elements.front()->GetFrameIndex())) {
            information.mFunctionCode = frame->mFunctionCode;
        }
    } else {
        KZM_LOG(ERROR, "[%s] Failed to get Measurement Information for suffix=%s, iotName='%s', alias='%s'", __func__,
                suffix.c_str(), name.c_str(), alias.c_str());
        return information;
    }
    GetUnit(suffix, information.mUnit);
    return information;
}

std::vector<std::shared_ptr<ElementData>> DeviceModel::GetElements(const std::string& name,
                                                                   const std::string& alias) const {
    std::vector<std::shared_ptr<ElementData>> elements;
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

const std::vector<FrameData>& DeviceModel::GetFrames() const {
    return mFrames;
}

StatusCode DeviceModel::GetCustomAlarmVortaObjectValue(
    const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
    kz::orba::VortaORBAObject& object, const DataModel::PreviousMeasurements& previous) const {
    const auto alarm = GetComputedAlarmElement({object.GetName(), object.GetAlias()});
    if (!alarm) {
        TellMissing(Status::INVALID_ARGUMENT);
        const auto& id = object.GetId();
        KZM_LOG(ERROR, "[%s] Custom alarm not found : %s", __func__, id.c_str());
        return Status::INVALID_ARGUMENT;
    }
    CustomAlarmObject structure(object.GetValue());
    structure.WriteIdentity(*alarm);
    if (!structure.HasState()) {
        TellMissing(Status::OUT_OF_RANGE);
        KZM_LOG(ERROR, "[%s] Missing elements in custom device VORTA response structure", __func__);
        return Status::OUT_OF_RANGE;
    }
    auto quality = DeviceCache::QUALITY_BAD;
    nlohmann::json state;
    const auto status = alarm->BuildVortaObjectValue(cache, IsBigEndian(), ignoreCacheAge, previous, quality, state);
    // If the chain does not give a boolean, the status is SUCCESS but there is no state.
    if (status == Status::SUCCESS && !state.is_null()) {
        structure.WriteState(std::move(state));
    }
    structure.WriteQuality(quality);
    return status;
}

StatusCode DeviceModel::GetVortaObjectValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                            bool ignoreCacheAge, kz::orba::VortaORBAObject& object) const {
    // Held during the call: the adapter may release the model.
    std::shared_ptr<VortaObjectAdapter> adapter;
    const auto status =
        FindAdapter(mObjectAdapters, mModelName, __func__, object.GetName(), object.GetAlias(), adapter);
    if (!adapter) {
        TellMissing(status);
    }
    return adapter ? adapter->GetObject(cache, IsBigEndian(), ignoreCacheAge, object) : status;
}

StatusCode DeviceModel::GetFramesForIoTNameAndAlias(const std::string& name, const std::string& alias,
                                                    Frames& frames) const {
    const auto elements = GetElements(name, alias);
    for (const auto& element : elements) {
        if (element) {
            AddFrame(mFrames, element->GetFrameIndex(), frames);
        }
    }
    if (!elements.empty()) {
        return Status::SUCCESS;
    }
    std::shared_ptr<VortaObjectAdapter> adapter;
    const auto status = FindAdapter(mObjectAdapters, mModelName, __func__, name, alias, adapter);
    if (adapter) {
        AddFrames(mFrames, adapter->GetFrameIndexes(), frames);
    }
    return status;
}

DeviceModel::Frames DeviceModel::GetDependencyFrame(const std::string& name, const std::string& alias) const {
    Frames frames;
    if (const auto alarm = GetComputedAlarmElement({name, alias})) {
        AddFrames(mFrames, alarm->GetFrameIndexes(), frames);
        return frames;
    }
    const auto adapter = mObjectAdapters.find(KeyView(name, alias));
    if (adapter != mObjectAdapters.end()) {
        if (adapter->second) {
            AddFrames(mFrames, adapter->second->GetFrameIndexes(), frames);
        } else {
            KZM_LOG(ERROR, "[%s] VortaObjectAdapter is null for '%s', iot name = '%s'", __func__, mModelName.c_str(),
                    name.c_str());
        }
        return frames;
    }
    GetFramesForIoTNameAndAlias(name, alias, frames);
    if (frames.empty() || !mElements) {
        return frames;
    }
    for (const auto& element : GetElements(name, alias)) {
        if (element) {
            AddDependencies(*this, *mElements, *element, frames);
        }
    }
    return frames;
}

bool DeviceModel::IsBigEndian() const {
    return mBigEndian;
}

StatusCode DeviceModel::GetUnit(const std::string& name, std::string& unit) const {
    const auto found = mUnits.find(name);
    if (found == mUnits.end()) {
        unit.clear();
        return Status::NOT_FOUND;
    }
    unit = found->second;
    return Status::SUCCESS;
}

StatusCode DeviceModel::GetClassName(const std::string& name, std::string& className) const {
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

StatusCode DeviceModel::GetComputedAlarmInstantaneousness(const Key& key, bool& instantaneous) const {
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
