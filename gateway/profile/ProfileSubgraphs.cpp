#include "gateway/profile/ProfileSubgraphs.h"

#include <set>

#include "gateway/profile/ObjectIdentity.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::Device::DeviceModel;
using ModbusDeviceModel::Device::VortaObjectCategory;

namespace {

// Of the objects, also of those that alarms and services have; faulty ones too.
std::set<std::string> NamesOfObjects(const JsonCursor& profile) {
    std::set<std::string> names;
    profile.At("objects").ForEach(
        [&](const std::string&, const JsonCursor& object) { names.insert(ObjectIdentity::OfObject(object).name); });
    profile.At("alarms").ForEach(
        [&](const std::string&, const JsonCursor& alarm) { names.insert(ObjectIdentity::OfAlarm(alarm).name); });
    profile.At("services").ForEach([&](const std::string&, const JsonCursor& service) {
        names.insert(service.At("name").Text());
    });
    return names;
}

}  // namespace

ProfileSubgraphs::ProfileSubgraphs(const JsonCursor& profile) : mDynamic(profile.Has("subgraphs")) {
    const std::set<std::string> known = NamesOfObjects(profile);
    profile.At("subgraphs").ForEach([&](const std::string& category, const JsonCursor& names) {
        std::set<std::string> seen;
        names.ForEach([&](const std::string&, const JsonCursor& place) {
            const std::string name = place.Text();
            if (!name.empty() && known.count(name) == 0) {
                place.Error("there is no such object, alarm or service" +
                            Alternatives(name, {known.begin(), known.end()}));
            } else if (!seen.insert(name).second) {
                place.Error(Quoted(name) + " stands in the list already");
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
