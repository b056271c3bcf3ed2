#include "dictionary/DeviceElementLookUp.h"

#include <nlohmann/json.hpp>

#include "kzm/pdm/Device/PdmElement.h"

namespace kz::orba::VortaExtensionModbus::Device {

namespace {

using kzm::pdm::Device::PdmElement;

// Null for an unknown key.
const DictionaryEntry* FindEntry(std::string_view key) {
    for (const DictionaryTable* table : DeviceElementLookUp::GetTables()) {
        if (const auto row = table->find(key); row != table->end()) {
            return &row->second;
        }
    }
    return nullptr;
}

}  // namespace

const std::array<const DictionaryTable*, 4>& DeviceElementLookUp::GetTables() {
    static constexpr std::array<const DictionaryTable*, 4> TABLES{
        &mIotAlmFunctionElement, &mIotMeasurementFunctionElement, &mIotProtectionFunctionElement,
        &mIotSwitchgearCircuitBreakerFunctionElement};
    return TABLES;
}

bool DeviceElementLookUp::CheckAlmElement(std::string_view key) {
    return mIotAlmFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckMeasurementElement(std::string_view key) {
    return mIotMeasurementFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckProtectionElement(std::string_view key) {
    return mIotProtectionFunctionElement.contains(key);
}

bool DeviceElementLookUp::CheckSwitchgearCircuitBreakerElement(std::string_view key) {
    return mIotSwitchgearCircuitBreakerFunctionElement.contains(key);
}

std::string DeviceElementLookUp::GetName(std::string_view key) {
    const DictionaryEntry* entry = FindEntry(key);
    return entry == nullptr ? "" : std::string(entry->name);
}

std::string DeviceElementLookUp::GetUnit(std::string_view key) {
    const DictionaryEntry* entry = FindEntry(key);
    return entry == nullptr ? "" : std::string(entry->unit);
}

std::string DeviceElementLookUp::GetClass(std::string_view key) {
    const DictionaryEntry* entry = FindEntry(key);
    return entry == nullptr ? "$iot.measurement.NumericalMeasurementValue" : std::string(entry->className);
}

nlohmann::json DeviceElementLookUp::GetStructure(std::string_view key) {
    const DictionaryEntry* entry = FindEntry(key);
    return BuildStructure(entry == nullptr ? StructureTemplate::MEASUREMENT : entry->structure);
}

std::unordered_multimap<std::string, std::string> DeviceElementLookUp::GetPdmId(std::string_view key) {
    const DictionaryEntry* entry = FindEntry(key);
    const AttributeSources sources = entry == nullptr ? AttributeSources() : entry->sources;
    return {sources.begin(), sources.end()};
}

std::string DeviceElementLookUp::GetMappedAttributePath(std::string_view key, std::string_view attributePath) {
    const DictionaryEntry* entry = FindEntry(key);
    return entry == nullptr ? "" : std::string(entry->sources.Find(attributePath));
}

bool DeviceElementLookUp::IsPdmElement(std::string_view id) {
    return PdmElement::IsPdmElement(std::string(id));
}

bool DeviceElementLookUp::CheckIdElement(std::string_view id) {
    return PdmElement::CheckIdElement(std::string(id));
}

bool DeviceElementLookUp::CheckIdVortaElement(std::string_view id) {
    return PdmElement::CheckIdVortaElement(std::string(id));
}

std::string DeviceElementLookUp::GetVortaIdentificationElement(std::string_view id) {
    return PdmElement::GetVortaIdentificationElement(std::string(id));
}

std::string DeviceElementLookUp::GetVortaIdForPdmId(std::string_view pdmId) {
    return PdmElement::GetVortaIdForPdmId(std::string(pdmId));
}

std::string DeviceElementLookUp::GetPdmIdentificationName(std::string_view id) {
    return PdmElement::GetPdmIdentificationName(std::string(id));
}

}  // namespace kz::orba::VortaExtensionModbus::Device
