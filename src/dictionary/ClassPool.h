#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dictionary/ClassNames.h"

namespace kz::orba::VortaExtensionModbus::Device {

// How many of the classes are dynamic: the first ones.
inline constexpr std::size_t DYNAMIC_CLASS_COUNT = std::size(ClassNames::ALARMS) + std::size(ClassNames::MEASUREMENTS) +
                                                   std::size(ClassNames::PROTECTIONS) +
                                                   std::size(ClassNames::CIRCUIT_BREAKERS);

// The whole name of the class at that place, which must be one of ClassNames::LISTS. A constant of the library.
std::string_view ClassNameAt(std::size_t index);

// The place of the first class with the prefix for whose rest the predicate holds. Ends the compilation without one.
template <typename Predicate>
consteval std::uint16_t IndexOfClass(std::string_view prefix, Predicate isIt) {
    std::size_t index = 0;
    for (const ClassNames::List& list : ClassNames::LISTS) {
        for (std::size_t i = 0; list.prefix == prefix && i < list.names.size(); ++i) {
            if (isIt(list.names[i])) {
                return static_cast<std::uint16_t>(index + i);
            }
        }
        index += list.names.size();
    }
    throw "a class is not in the lists";
}

}  // namespace kz::orba::VortaExtensionModbus::Device
