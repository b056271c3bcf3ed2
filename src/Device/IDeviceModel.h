#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "DataModel/ComputedAlarmPreviousMeasurement.h"
#include "DataModel/ElementData.h"
#include "Device/ModbusMeasurementInformation.h"
#include "Device/ServiceMapping.h"
#include "Device/VortaObjectCategory.h"
#include "DeviceCache/CacheReadAccessInterface.h"
#include "DeviceProfile/FrameData.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"
#include "kzm/edm/ModelBaseConcept.h"

namespace kz::orba {
class VortaORBAObject;
}
namespace kzm::ModbusDeviceModel::DataModel {
class ComputedAlarmElement;
}

namespace kzm::ModbusDeviceModel::Device {

// The run-time model of one Modbus device as its callers see it. A model is built and configured by one thread; after
// that, const operations may run on many threads at once, and no setter may be called. Statuses are named as in
// Support/Status.h.
class KZM_MODBUS_EXPORT IDeviceModel {
public:
    // How a measurement is read from the device. `suffix`: the id of its element, e.g. "625", or a custom measurement's
    // id. If that is unknown, the default record is returned and an error logged.
    virtual ModbusMeasurementInformation GetMeasurementInformation(const std::string& suffix) const = 0;
    // All elements stored under (name, alias).
    virtual std::vector<std::shared_ptr<DataModel::ElementData>> GetElements(const std::string& name,
                                                                             const std::string& alias) const = 0;
    // The elements of the service that handles (name, alias), with the model's frames; only the frames if no service is
    // known (logged as a warning). The mapping must not outlive the model.
    virtual ServiceMapping GetServiceMapping(const std::string& name, const std::string& alias) const = 0;
    // The device's read frames, in the order of their indexes.
    virtual const std::vector<DeviceProfile::FrameData>& GetFrames() const = 0;
    // Evaluates the computed alarm of the object's name and alias and writes it into those leaves of the object's
    // custom-alarm structure that exist: name, description, type and criticality; of the state the value and the
    // calendar time after the evaluation (both only for SUCCESS), and the quality. `previous`: the caller's map of
    // previous values; the caller serialises evaluations that share one.
    // INVALID_ARGUMENT: no such alarm, nothing written. OUT_OF_RANGE: no "elements", nothing written; or no "state",
    // only name, description, type and criticality written. Both are logged as errors. Otherwise the status of
    // ComputedAlarmElement::BuildVortaObjectValue.
    virtual kz::orba::StatusCode GetCustomAlarmVortaObjectValue(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
        kz::orba::VortaORBAObject& object, const DataModel::PreviousMeasurements& previous) const = 0;
    // Fills the object by the adapter of its name and alias. `ignoreCacheAge`: see AttributeAdapter.
    // NOT_FOUND: the model has no such object. INVALID_ARGUMENT: its adapter is null (logged as an error). `object` is
    // untouched after both. Otherwise the adapter's status; see SimpleObjectAdapter and DataObjectAdapter for what
    // `object` then holds and for what they throw.
    virtual kz::orba::StatusCode GetVortaObjectValue(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
        kz::orba::VortaORBAObject& object) const = 0;
    // The frames that the object or computed alarm of (name, alias) needs, by their index, including those of the
    // elements that its own elements depend on. Empty for an unknown name. The pointers refer into the model.
    virtual std::map<std::uint8_t, const DeviceProfile::FrameData*> GetDependencyFrame(
        const std::string& name, const std::string& alias) const = 0;
    // Whether the device sends the most significant word first.
    virtual bool IsBigEndian() const = 0;
    // The unit of a measurement, e.g. "A". NOT_FOUND, and an empty text, if it has none.
    virtual kz::orba::StatusCode GetUnit(const std::string& name, std::string& unit) const = 0;
    // The data-model class of a measurement: the dictionary's, or if that is only the generic numerical class, the
    // model's own. NOT_FOUND, logged as an error, if the model has none; `className` is then the generic class.
    virtual kz::orba::StatusCode GetClassName(const std::string& name, std::string& className) const = 0;
    // True unless the alarm reports a change (ComputedAlarmElement::IsHasChangedAlarm). OUT_OF_RANGE, with the output
    // untouched, for an unknown alarm.
    virtual kz::orba::StatusCode GetComputedAlarmInstantaneousness(const std::pair<std::string, std::string>& key,
                                                                   bool& instantaneous) const = 0;
    // The computed alarm of (name, alias); null if there is none.
    virtual std::shared_ptr<DataModel::ComputedAlarmElement> GetComputedAlarmElement(
        const std::pair<std::string, std::string>& key) const = 0;
    // Marks the model as one of a dynamic class and resizes its table of sub-graphs to nine, dropping any beyond.
    virtual void SetEdmType() = 0;
    // Whether SetEdmType was called.
    virtual bool IsEdmType() const = 0;
    // The sub-graphs of a device of a dynamic class; see DynamicVorta.
    virtual const std::vector<std::string>& GetVortaSubgraph(VortaObjectCategory category) const = 0;
    virtual bool FindObject(VortaObjectCategory category, const std::string& name) const = 0;
    virtual void SetVortaSubgraph(VortaObjectCategory category, const std::vector<std::string>& names) = 0;
    virtual bool IsSubgraphAvailable(VortaObjectCategory category) const = 0;
    virtual ~IDeviceModel();
    // What the profile loader has set about the model; initially empty, false and 0.
    virtual void SetModelName(const std::string& modelName) = 0;
    virtual const std::string& GetModelName() const = 0;
    virtual void SetModelVersion(const std::string& modelVersion) = 0;
    virtual const std::string& GetModelVersion() const = 0;
    virtual void SetUserDefinedModel(bool userDefinedModel) = 0;
    virtual bool IsUserDefinedModel() const = 0;
    virtual kzm::edm::ModelBaseConcept GetModelBaseConcept() const = 0;
    virtual void SetModelBaseConcept(kzm::edm::ModelBaseConcept modelBaseConcept) = 0;
    // Replaces the whole identification. The keys are up to the caller.
    virtual void SetIdentification(const std::map<std::string, std::string>& identification) = 0;
    virtual const std::map<std::string, std::string>& GetIdentification() const = 0;
};

}  // namespace kzm::ModbusDeviceModel::Device
