#include "dictionary/DynamicDeviceClasses.h"

#include <algorithm>
#include <ranges>

#include "dictionary/ClassPool.h"

namespace kz::orba::VortaExtensionModbus::Device {

std::size_t DynamicDeviceClasses::size() const {
    return DYNAMIC_CLASS_COUNT;
}

std::string_view DynamicDeviceClasses::ValueAt(std::size_t index) const {
    return ClassNameAt(index);
}

DynamicDeviceClasses::const_iterator DynamicDeviceClasses::find(std::string_view name) const {
    const auto places = std::views::iota(std::size_t{0}, DYNAMIC_CLASS_COUNT);
    const auto place = std::ranges::lower_bound(places, name, {}, ClassNameAt);
    return place != places.end() && ClassNameAt(*place) == name ? const_iterator(*this, *place) : end();
}

}  // namespace kz::orba::VortaExtensionModbus::Device
