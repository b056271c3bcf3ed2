#include "Device/DynamicVorta.h"

#include <algorithm>
#include <utility>

namespace kzm::ModbusDeviceModel::Device {

void DynamicVorta::SetVortaSubgraph(Table& table, VortaObjectCategory category, const std::vector<std::string>& names) {
    // Copied before the table grows: the names may be one of its own lists.
    std::vector<std::string> subgraph(names);
    std::sort(subgraph.begin(), subgraph.end());
    table.resize(std::max<std::size_t>(table.size(), VORTA_OBJECT_CATEGORIES));
    table.at(static_cast<std::size_t>(category)) = std::move(subgraph);
}

const std::vector<std::string>& DynamicVorta::GetVortaSubgraph(const Table& table, VortaObjectCategory category) {
    static const std::vector<std::string> NONE;
    return IsSubgraphAvailable(table, category) ? table.at(static_cast<std::size_t>(category)) : NONE;
}

bool DynamicVorta::IsSubgraphAvailable(const Table& table, VortaObjectCategory category) {
    const auto index = static_cast<std::size_t>(category);
    return index < table.size() && !table[index].empty();
}

bool DynamicVorta::FindObject(const Table& table, VortaObjectCategory category, const std::string& name) {
    const auto& subgraph = GetVortaSubgraph(table, category);
    return std::binary_search(subgraph.begin(), subgraph.end(), name);
}

}  // namespace kzm::ModbusDeviceModel::Device
