#pragma once

#include <string>
#include <vector>

#include "Device/VortaObjectCategory.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::Device {

// The objects that a device of a dynamic class says it has: a table of sorted lists of names, one for each category.
class KZM_MODBUS_EXPORT DynamicVorta {
public:
    // One list for each category, in the order of their numbers.
    using Table = std::vector<std::vector<std::string>>;

    // Replaces the list of a category by a sorted copy of `names`, which may be one of the table's own lists;
    // duplicates stay. A table of fewer than nine categories grows to nine first. Throws std::out_of_range for a
    // category past the table.
    static void SetVortaSubgraph(Table& table, VortaObjectCategory category, const std::vector<std::string>& names);
    // Empty where there is no sub-graph.
    static const std::vector<std::string>& GetVortaSubgraph(const Table& table, VortaObjectCategory category);
    // Whether the category has a list that is not empty.
    static bool IsSubgraphAvailable(const Table& table, VortaObjectCategory category);
    // Whether the category's list has the name, exactly.
    static bool FindObject(const Table& table, VortaObjectCategory category, const std::string& name);
};

}  // namespace kzm::ModbusDeviceModel::Device
