#pragma once

#include <nlohmann/json_fwd.hpp>

#include "Export.h"
#include "dictionary/StructureTemplate.h"

namespace kz::orba::VortaExtensionModbus::Device {

// A reference to the structure template of a dictionary element.
class KZM_MODBUS_EXPORT StructureReference {
public:
    // To that of a measurement, or to the one given.
    constexpr StructureReference() = default;
    constexpr explicit StructureReference(StructureTemplate structure) : mStructure(structure) {}

    // The template, shared by all elements that have it: the skeleton of an object under its one member
    // "IoTElementDynamicClassForDevice"; what the device fills is null. Valid as long as the library is loaded. The
    // first call builds all templates and may throw std::bad_alloc. Thread-safe.
    const nlohmann::json& get() const;
    operator const nlohmann::json&() const { return get(); }

    // Which template it is, e.g. for BuildStructure.
    constexpr operator StructureTemplate() const { return mStructure; }

private:
    StructureTemplate mStructure = StructureTemplate::MEASUREMENT;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
