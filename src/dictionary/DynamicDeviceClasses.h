#pragma once

#include <string_view>

#include "Export.h"
#include "dictionary/IndexIterator.h"

namespace kz::orba::VortaExtensionModbus::Device {

// The data-model classes whose objects are dynamic: their shape is given by a structure template, not by a compiled
// class. A read-only set of names in byte order, constants of the library. Thread-safe.
class KZM_MODBUS_EXPORT DynamicDeviceClasses {
public:
    // As a standard set calls them.
    using key_type = std::string_view;
    using value_type = std::string_view;
    using const_iterator = IndexIterator<DynamicDeviceClasses>;
    using iterator = const_iterator;

    // All names in byte order, and how many they are.
    const_iterator begin() const { return {*this, 0}; }
    const_iterator end() const { return {*this, size()}; }
    std::size_t size() const;

    // The whole name, exactly; end() for one that the set does not hold.
    const_iterator find(std::string_view name) const;
    bool contains(std::string_view name) const { return find(name) != end(); }
    std::size_t count(std::string_view name) const { return contains(name) ? 1 : 0; }

    // The name at that place, which must be less than size().
    std::string_view ValueAt(std::size_t index) const;
};

inline constexpr DynamicDeviceClasses DYNAMIC_DEVICE_CLASS_NAMES;

// Whether the name is one of them, exactly as written.
inline bool IsDynamicDeviceClassName(std::string_view name) {
    return DYNAMIC_DEVICE_CLASS_NAMES.contains(name);
}

}  // namespace kz::orba::VortaExtensionModbus::Device
