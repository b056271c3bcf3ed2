#include "dictionary/DeviceElementLookUp.h"

#include <nlohmann/json.hpp>
#include <optional>

#include "kzm/pdm/Device/PdmElement.h"

namespace kz::orba::VortaExtensionModbus::Device {

namespace {

using kzm::pdm::Device::PdmElement;

std::optional<DictionaryEntry> FindEntry(std::string_view key) {
    for (const DictionaryTable* table :
         {&DeviceElementLookUp::mIotAlmFunctionElement, &DeviceElementLookUp::mIotMeasurementFunctionElement,
          &DeviceElementLookUp::mIotProtectionFunctionElement,
          &DeviceElementLookUp::mIotSwitchgearCircuitBreakerFunctionElement}) {
        if (const auto row = table->find(key); row != table->end()) {
            return row->second;
        }
    }
    return std::nullopt;
}

}  // namespace

bool DeviceElementLookUp::CheckAlmElement(std::string key) {
    return mIotAlmFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckMeasurementElement(std::string key) {
    return mIotMeasurementFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckProtectionElement(std::string key) {
    return mIotProtectionFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckSwitchgearCircuitBreakerElement(std::string key) {
    return mIotSwitchgearCircuitBreakerFunctionElement.contains(key);
}

std::string DeviceElementLookUp::GetName(std::string key) {
    const auto entry = FindEntry(key);
    return std::string(entry ? entry->name : "");
}

std::string DeviceElementLookUp::GetUnit(std::string key) {
    const auto entry = FindEntry(key);
    return std::string(entry ? entry->unit : "");
}

std::string DeviceElementLookUp::GetClass(std::string key) {
    const auto entry = FindEntry(key);
    return std::string(entry ? entry->className : "$iot.measurement.NumericalMeasurementValue");
}

nlohmann::json DeviceElementLookUp::GetStructure(std::string key) {
    const auto entry = FindEntry(key);
    return BuildStructure(entry ? entry->structure : StructureTemplate::MEASUREMENT);
}

std::unordered_multimap<std::string, std::string> DeviceElementLookUp::GetPdmId(std::string key) {
    std::unordered_multimap<std::string, std::string> ids;
    if (const auto entry = FindEntry(key)) {
        for (const AttributeSource& source : entry->sources) {
            ids.emplace(source.path, source.id);
        }
    }
    return ids;
}

std::string DeviceElementLookUp::GetMappedAttributePath(const std::string& key, const std::string& attributePath) {
    const auto entry = FindEntry(key);
    return std::string(entry ? entry->sources.Find(attributePath) : "");
}

bool DeviceElementLookUp::IsPdmElement(const std::string& id) {
    return PdmElement::IsPdmElement(id);
}

bool DeviceElementLookUp::CheckIdElement(const std::string& id) {
    return PdmElement::CheckIdElement(id);
}

bool DeviceElementLookUp::CheckIdVortaElement(const std::string& id) {
    return PdmElement::CheckIdVortaElement(id);
}

std::string DeviceElementLookUp::GetVortaIdentificationElement(const std::string& id) {
    return PdmElement::GetVortaIdentificationElement(id);
}

std::string DeviceElementLookUp::GetVortaIdForPdmId(const std::string& pdmId) {
    return PdmElement::GetVortaIdForPdmId(pdmId);
}

std::string DeviceElementLookUp::GetPdmIdentificationName(const std::string& id) {
    return PdmElement::GetPdmIdentificationName(id);
}

}  // namespace kz::orba::VortaExtensionModbus::Device
