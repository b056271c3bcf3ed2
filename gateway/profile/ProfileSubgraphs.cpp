#include "gateway/profile/ProfileSubgraphs.h"

#include <algorithm>
#include <set>

namespace kzm::ModbusGateway {

using ModbusDeviceModel::Device::DeviceModel;
using ModbusDeviceModel::Device::VortaObjectCategory;

ProfileSubgraphs::ProfileSubgraphs(const JsonCursor& section, const Names& known) : mDynamic(!section->is_null()) {
    section.ForEach([&](const std::string& category, const JsonCursor& names) {
        std::set<std::string> seen;
        names.ForEach([&](const std::string&, const JsonCursor& place) {
            const std::string name = place.Text();
            if (!name.empty() && std::find(known.begin(), known.end(), name) == known.end()) {
                place.Error("there is no object, alarm or service " + Quoted(name) + Alternatives(name, known));
            } else if (!seen.insert(name).second) {
                place.Error(Quoted(name) + " is already in this list");
            }
        });
        const auto number = ParseNumber(category);
        if (number && *number < ModbusDeviceModel::Device::VORTA_OBJECT_CATEGORIES) {
            mSubgraphs[static_cast<VortaObjectCategory>(*number)] = {seen.begin(), seen.end()};
        }
    });
}

void ProfileSubgraphs::ApplyTo(DeviceModel& model) const {
    if (mDynamic) {
        model.SetEdmType();
    }
    for (const auto& [category, names] : mSubgraphs) {
        model.SetVortaSubgraph(category, names);
    }
}

}  // namespace kzm::ModbusGateway
