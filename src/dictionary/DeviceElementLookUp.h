#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <unordered_map>

#include "Export.h"
#include "dictionary/DictionaryTable.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The built-in element dictionary: what is known of an element of the data model by its key. A key is a short id
// ("1d"), the id of a device element ("H11VAB_Mag") or two such ids joined by ";" ("DTMinIA;MinIA"), always whole and
// case-sensitive. Nothing here throws for an unknown key, all results are copies, and any thread may ask at any time.
class KZM_MODBUS_EXPORT DeviceElementLookUp {
public:
    // Whether the key is one of that table.
    static bool CheckAlmElement(std::string key);
    static bool CheckMeasurementElement(std::string key);
    static bool CheckProtectionElement(std::string key);
    static bool CheckSwitchgearCircuitBreakerElement(std::string key);

    // Name of the data-model object, e.g. "Alarm.GroundFaultAlarm". Empty for an unknown key.
    static std::string GetName(std::string key);
    // Unit of the value, e.g. "A". Empty for an unknown key and for an element without unit.
    static std::string GetUnit(std::string key);
    // Data-model class. "$iot.measurement.NumericalMeasurementValue" for an unknown key.
    static std::string GetClass(std::string key);
    // Skeleton of the object, under "IoTElementDynamicClassForDevice". That of a measurement for an unknown key.
    static nlohmann::json GetStructure(std::string key);
    // Attribute path to the id of the device element that feeds it. Empty for an unknown key.
    static std::unordered_multimap<std::string, std::string> GetPdmId(std::string key);
    // The id of the device element that feeds one attribute, e.g. "datetime". Empty for an unknown key and for an
    // attribute that nothing feeds.
    static std::string GetMappedAttributePath(const std::string& key, const std::string& attributePath);

    // Identification elements, such as a serial number, are the platform's: kzm::pdm::Device::PdmElement answers.
    static bool IsPdmElement(const std::string& id);
    static bool CheckIdElement(const std::string& id);
    static bool CheckIdVortaElement(const std::string& id);
    static std::string GetVortaIdentificationElement(const std::string& id);
    static std::string GetVortaIdForPdmId(const std::string& pdmId);
    static std::string GetPdmIdentificationName(const std::string& id);

    // A key that stood in two tables would be the earlier one's.
    static const DictionaryTable mIotAlmFunctionElement;
    static const DictionaryTable mIotMeasurementFunctionElement;
    static const DictionaryTable mIotProtectionFunctionElement;
    static const DictionaryTable mIotSwitchgearCircuitBreakerFunctionElement;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
