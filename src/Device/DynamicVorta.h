#pragma once

#include <string>
#include <vector>

#include "Device/VortaObjectCategory.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::Device {

// The objects that a device of a dynamic class has announced: a table of sorted lists of names, one for each category.
// Changes nothing but the table; the caller keeps SetVortaSubgraph apart from readers of the same table.
class KZM_MODBUS_EXPORT DynamicVorta {
public:
    // One list for each category, in the order of their numbers.
    using Table = std::vector<std::vector<std::string>>;

    // Replaces the list of a category by a sorted copy of `names`, which may be one of the table's own lists;
    // duplicates stay. A table of fewer than nine categories grows to nine first. Throws std::out_of_range for a
    // category past the table.
    static void SetVortaSubgraph(Table& table, VortaObjectCategory category, const std::vector<std::string>& names);
    // The category's list; empty if there is none.
    static const std::vector<std::string>& GetVortaSubgraph(const Table& table, VortaObjectCategory category);
    // Whether the category has a list that is not empty.
    static bool IsSubgraphAvailable(const Table& table, VortaObjectCategory category);
    // Whether the category's list contains the name.
    static bool FindObject(const Table& table, VortaObjectCategory category, const std::string& name);
};

}  // namespace kzm::ModbusDeviceModel::Device
