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

// The run-time model of one Modbus device as its callers see it. A model is built and configured by one thread; from
// then on the const operations run on many threads at once, and no setter may run beside them.
class KZM_MODBUS_EXPORT IDeviceModel {
public:
    // How a measurement is read from the device, by the id of its element, e.g. "625" or a custom measurement's id. The
    // default record, with an error in the log, where that cannot be said.
    virtual ModbusMeasurementInformation GetMeasurementInformation(const std::string& suffix) const = 0;
    // Every element stored under (name, alias); empty where there is none.
    virtual std::vector<std::shared_ptr<DataModel::ElementData>> GetElements(const std::string& name,
                                                                             const std::string& alias) const = 0;
    // The elements of the service that handles (name, alias), bound to the model's frames; the frames alone where no
    // such service is known (logged as a warning). The mapping must not outlive the model.
    virtual ServiceMapping GetServiceMapping(const std::string& name, const std::string& alias) const = 0;
    // The device's read frames, in the order of their indexes.
    virtual const std::vector<DeviceProfile::FrameData>& GetFrames() const = 0;
    // Evaluates the computed alarm that `object` names by its name and alias and writes it into the object's
    // custom-alarm structure, as far as its leaves are there: name, description, type, criticality, and of the state
    // the value, the date-time (both only for status 0) and the quality. `previous` is the caller's map of previous
    // values; evaluations that share one are serialised by the caller. 1: no such alarm, nothing written. 28: no
    // "elements", nothing written; or no "state", only the identity written. Otherwise the status of
    // ComputedAlarmElement::BuildVortaObjectValue. 1 for a missing alarm and 28 are logged.
    virtual kz::orba::StatusCode GetCustomAlarmVortaObjectValue(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
        kz::orba::VortaORBAObject& object, const DataModel::PreviousMeasurements& previous) const = 0;
    // Fills the object that `object` names by its name and alias. `ignoreCacheAge`: see AttributeAdapter.
    // 44: no such object. 1: its adapter is null (logged). In both cases `object` is untouched. Otherwise what the
    // adapter returns; see SimpleObjectAdapter and DataObjectAdapter for what `object` then holds.
    virtual kz::orba::StatusCode GetVortaObjectValue(
        const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache, bool ignoreCacheAge,
        kz::orba::VortaORBAObject& object) const = 0;
    // The frames to read before the object, or the computed alarm, of (name, alias) can be built, by their index; with
    // the frames of the elements that its own elements depend on. Empty where nothing is known. The pointers refer into
    // the model.
    virtual std::map<std::uint8_t, const DeviceProfile::FrameData*> GetDependencyFrame(
        const std::string& name, const std::string& alias) const = 0;
    // Whether the device sends the most significant word first.
    virtual bool IsBigEndian() const = 0;
    // The unit of a measurement, e.g. "A". 44, and an empty text, where none is known.
    virtual kz::orba::StatusCode GetUnit(const std::string& name, std::string& unit) const = 0;
    // The data-model class of a measurement: the dictionary's, or for what the dictionary only calls numerical the
    // model's own. 44, logged as an error, where neither knows more; `className` is then the numerical class.
    virtual kz::orba::StatusCode GetClassName(const std::string& name, std::string& className) const = 0;
    // Whether an alarm holds a state rather than reports a change. 28, and the output untouched, for an unknown alarm.
    virtual kz::orba::StatusCode GetComputedAlarmInstantaneousness(const std::pair<std::string, std::string>& key,
                                                                   bool& instantaneous) const = 0;
    // Null where there is no such alarm.
    virtual std::shared_ptr<DataModel::ComputedAlarmElement> GetComputedAlarmElement(
        const std::pair<std::string, std::string>& key) const = 0;
    // Marks the model as one of a dynamic class and gives it exactly nine sub-graphs; surplus ones are dropped.
    virtual void SetEdmType() = 0;
    // Whether SetEdmType was called.
    virtual bool IsEdmType() const = 0;
    // The sub-graphs of a device of a dynamic class; see DynamicVorta.
    virtual const std::vector<std::string>& GetVortaSubgraph(VortaObjectCategory category) const = 0;
    virtual bool FindObject(VortaObjectCategory category, const std::string& name) const = 0;
    virtual void SetVortaSubgraph(VortaObjectCategory category, const std::vector<std::string>& names) = 0;
    virtual bool IsSubgraphAvailable(VortaObjectCategory category) const = 0;
    virtual ~IDeviceModel();
    // What the loader of the profile says of the model; empty, false and 0 until it does.
    virtual void SetModelName(const std::string& modelName) = 0;
    virtual const std::string& GetModelName() const = 0;
    virtual void SetModelVersion(const std::string& modelVersion) = 0;
    virtual const std::string& GetModelVersion() const = 0;
    virtual void SetUserDefinedModel(bool userDefinedModel) = 0;
    virtual bool IsUserDefinedModel() const = 0;
    virtual kzm::edm::ModelBaseConcept GetModelBaseConcept() const = 0;
    virtual void SetModelBaseConcept(kzm::edm::ModelBaseConcept modelBaseConcept) = 0;
    // Replaces the identification whole; its keys are the caller's.
    virtual void SetIdentification(const std::map<std::string, std::string>& identification) = 0;
    virtual const std::map<std::string, std::string>& GetIdentification() const = 0;
};

}  // namespace kzm::ModbusDeviceModel::Device
