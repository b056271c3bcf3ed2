#include "gateway/profile/ProfileLoader.h"

#include "gateway/json/JsonSchema.h"
#include "gateway/profile/ProfileAlarms.h"
#include "gateway/profile/ProfileObjects.h"
#include "gateway/profile/ProfileServices.h"
#include "gateway/profile/ProfileSubgraphs.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::Device::DeviceModel;

namespace {

void DescribeDevice(const JsonCursor& device, DeviceModel& model) {
    model.SetModelName(device.At("model").Text());
    model.SetModelVersion(device.At("version").Text());
    model.SetUserDefinedModel(device.Has("userDefined") && device.At("userDefined")->get<bool>());
    if (device.Has("baseConcept")) {
        const auto number = device.At("baseConcept")->get<std::int32_t>();
        model.SetModelBaseConcept(static_cast<kzm::edm::ModelBaseConcept>(number));
    }
    std::map<std::string, std::string> identification;
    device.At("identification").ForEach([&identification](const std::string& name, const JsonCursor& text) {
        identification.emplace(name, text.Text());
    });
    model.SetIdentification(identification);
}

// The sections of a profile, each reads those before it.
struct Sections {
    Sections(const JsonCursor& root, const ChainRegistry& chains)
        : frames(root.At("frames")),
          enumerations(root.At("enumerations")),
          elements(root.At("elements"), frames, enumerations, chains),
          objects(root.At("objects"), elements),
          alarms(root.At("alarms"), elements, objects, chains),
          services(root.At("services"), elements, frames),
          subgraphs(root.At("subgraphs"), GetNames()) {}

    // Whatever a sub-graph may contain, including faulty ones.
    Names GetNames() const {
        Names names = objects.GetNames();
        names.insert(names.end(), alarms.GetNames().begin(), alarms.GetNames().end());
        names.insert(names.end(), services.GetNames().begin(), services.GetNames().end());
        return names;
    }

    ProfileFrames frames;
    ProfileEnumerations enumerations;
    ProfileElements elements;
    ProfileObjects objects;
    ProfileAlarms alarms;
    ProfileServices services;
    ProfileSubgraphs subgraphs;
};

// The device's word order is that of the elements that have none of their own.
ProfilePlaces PlacesOf(const JsonCursor& device, const Sections& sections) {
    ProfilePlaces places = sections.elements.GetPlaces();
    const std::size_t order = device.Has("wordOrder") ? device.At("wordOrder").GetLine() : 0;
    for (auto& [part, place] : places) {
        if (order != 0 && place->lines.contains("address") && !place->lines.contains("order")) {
            auto completed = std::make_shared<ProfilePlace>(*place);
            completed->lines["order"] = order;
            place = std::move(completed);
        }
    }
    places.insert(sections.objects.GetPlaces().begin(), sections.objects.GetPlaces().end());
    places.insert(sections.alarms.GetPlaces().begin(), sections.alarms.GetPlaces().end());
    return places;
}

std::unique_ptr<LoadedProfile> MakeProfile(const JsonCursor& device, const Sections& sections) {
    auto profile = std::make_unique<LoadedProfile>();
    profile->frameNames = sections.frames.GetNames();
    profile->objects = sections.objects.GetObjects();
    profile->alarms = sections.alarms.GetAlarms();
    profile->services = sections.services.GetServices();
    profile->places = PlacesOf(device, sections);
    const bool bigEndian = device.At("wordOrder").Text() != "little";
    auto units = sections.objects.GetUnits();
    auto classNames = sections.objects.GetClassNames();
    auto alarms = sections.alarms.GetComputedAlarms();
    profile->model =
        std::make_unique<DeviceModel>(sections.objects.GetAdapters(), sections.frames.GetFrames(), std::move(units),
                                      std::move(classNames), std::move(alarms), bigEndian);
    profile->serviceModel = sections.services.MakeModel(bigEndian);
    sections.subgraphs.ApplyTo(*profile->model);
    DescribeDevice(device, *profile->model);
    return profile;
}

std::unique_ptr<LoadedProfile> ReadProfile(const JsonCursor& root, const ChainRegistry& chains, Problems& problems) {
    const Sections sections(root, chains);
    if (HasError(problems)) {
        return nullptr;
    }
    sections.frames.ReportUnused();
    sections.enumerations.ReportUnused();
    sections.elements.ReportUnused();
    sections.elements.PublishLabels();
    sections.objects.PublishLabels();
    return MakeProfile(root.At("device"), sections);
}

}  // namespace

ProfileLoader::Result ProfileLoader::Load(std::string_view text, const ChainRegistry& chains) {
    static const JsonSchema SCHEMA(GetSchema());
    Result result;
    const LocatedJson document = LocatedJson::Parse(text, result.problems);
    if (document.IsRead()) {
        const nlohmann::json content = SCHEMA.Check(document, result.problems);
        result.profile = ReadProfile(JsonCursor(document, content, result.problems), chains, result.problems);
    }
    SortByLine(result.problems);
    return result;
}

}  // namespace kzm::ModbusGateway
