#pragma once

#include <cstddef>
#include <string_view>

#include "Export.h"
#include "dictionary/DictionaryText.h"
#include "dictionary/SortedConstants.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The data-model classes whose objects are dynamic: their shape is given by a structure template, not by a compiled
// class. A read-only set of names in byte order, constants of the library. Thread-safe.
class KZM_MODBUS_EXPORT DynamicDeviceClasses : public SortedConstants<DynamicDeviceClasses, DictionaryText> {
public:
    // All names in byte order, and how many they are.
    const DictionaryText* data() const;
    std::size_t size() const;
};

inline constexpr DynamicDeviceClasses DYNAMIC_DEVICE_CLASS_NAMES;

// Whether the name is one of them, exactly as written.
inline bool IsDynamicDeviceClassName(std::string_view name) {
    return DYNAMIC_DEVICE_CLASS_NAMES.contains(name);
}

}  // namespace kz::orba::VortaExtensionModbus::Device
