#include "dictionary/DynamicDeviceClasses.h"

#include "dictionary/ClassPool.h"
#include "dictionary/FindIndex.h"

namespace kz::orba::VortaExtensionModbus::Device {

std::size_t DynamicDeviceClasses::size() const {
    return DYNAMIC_CLASS_COUNT;
}

std::string_view DynamicDeviceClasses::ValueAt(std::size_t index) const {
    return ClassNameAt(index);
}

DynamicDeviceClasses::const_iterator DynamicDeviceClasses::find(std::string_view name) const {
    return {*this, FindIndex(name, DYNAMIC_CLASS_COUNT, ClassNameAt)};
}

}  // namespace kz::orba::VortaExtensionModbus::Device
