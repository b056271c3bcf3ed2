#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Export.h"
#include "dictionary/DictionaryTable.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The built-in element dictionary: what is known about an element of the data model by its key. A key is a short id
// ("1d"), the id of a device element ("H11VAB_Mag") or two such ids joined by ";" ("DTMinIA;MinIA"); it is compared
// whole and case-sensitively. Nothing here throws for an unknown key, nothing is logged, all results are copies, and
// any thread may ask at any time.
class KZM_MODBUS_EXPORT DeviceElementLookUp {
public:
    // Whether that table has the key.
    static bool CheckAlmElement(std::string_view key);
    static bool CheckMeasurementElement(std::string_view key);
    static bool CheckProtectionElement(std::string_view key);
    static bool CheckSwitchgearCircuitBreakerElement(std::string_view key);

    // Name of the data-model object, e.g. "Alarm.GroundFaultAlarm". Empty for an unknown key.
    static std::string GetName(std::string_view key);
    // Unit of the value, e.g. "A". Empty for an unknown key and for an element without unit.
    static std::string GetUnit(std::string_view key);
    // Data-model class. "$iot.measurement.NumericalMeasurementValue" for an unknown key.
    static std::string GetClass(std::string_view key);
    // Skeleton of the object, under "IoTElementDynamicClassForDevice". That of a measurement for an unknown key.
    static nlohmann::json GetStructure(std::string_view key);
    // Maps each attribute path to the id of the device element that feeds it. Empty for an unknown key.
    static std::unordered_multimap<std::string, std::string> GetPdmId(std::string_view key);
    // The id of the device element that feeds one attribute, e.g. "datetime". Empty for an unknown key and for an
    // attribute that nothing feeds.
    static std::string GetMappedAttributePath(std::string_view key, std::string_view attributePath);

    // Identification elements, such as a serial number, belong to the platform: kzm::pdm::Device::PdmElement answers.
    static bool IsPdmElement(std::string_view id);
    static bool CheckIdElement(std::string_view id);
    static bool CheckIdVortaElement(std::string_view id);
    static std::string GetVortaIdentificationElement(std::string_view id);
    static std::string GetVortaIdForPdmId(std::string_view pdmId);
    static std::string GetPdmIdentificationName(std::string_view id);

    // The tables. They are constants: other static objects may use them while they are constructed.
    static const DictionaryTable mIotAlmFunctionElement;
    static const DictionaryTable mIotMeasurementFunctionElement;
    static const DictionaryTable mIotProtectionFunctionElement;
    static const DictionaryTable mIotSwitchgearCircuitBreakerFunctionElement;

    // All four in this order. A key that was in two of them would be that of the first one.
    static const std::array<const DictionaryTable*, 4>& GetTables();
};

}  // namespace kz::orba::VortaExtensionModbus::Device
