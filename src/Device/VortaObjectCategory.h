#pragma once

#include <cstddef>
#include <cstdint>

namespace kzm::ModbusDeviceModel::Device {

// The category of a data-model object: an index into the table of sub-graphs.
enum class VortaObjectCategory : std::uint32_t {
    CATEGORY_0 = 0,
    CATEGORY_1 = 1,
    CATEGORY_2 = 2,
    CATEGORY_3 = 3,
    CATEGORY_4 = 4,
    CATEGORY_5 = 5,
    CATEGORY_6 = 6,
    CATEGORY_7 = 7,
    CATEGORY_8 = 8,
};

// How many categories there are.
inline constexpr std::size_t VORTA_OBJECT_CATEGORIES = 9;

}  // namespace kzm::ModbusDeviceModel::Device
