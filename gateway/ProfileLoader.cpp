#include "gateway/ProfileLoader.h"

#include "gateway/JsonStructure.h"
#include "gateway/ProfileAlarms.h"
#include "gateway/ProfileObjects.h"

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

std::unique_ptr<LoadedProfile> MakeProfile(const JsonCursor& device, const ProfileFrames& frames,
                                           const ProfileObjects& objects, const ProfileAlarms& alarms) {
    auto profile = std::make_unique<LoadedProfile>();
    profile->frameNames = frames.GetNames();
    profile->objects = objects.GetObjects();
    profile->alarms = alarms.GetAlarms();
    auto units = objects.GetUnits();
    auto computedAlarms = alarms.GetComputedAlarms();
    auto classNames = objects.GetClassNames();
    profile->model = std::make_unique<DeviceModel>(objects.GetAdapters(), frames.GetFrames(), std::move(units),
                                                   std::move(classNames), std::move(computedAlarms),
                                                   device.At("wordOrder").Text() != "little");
    DescribeDevice(device, *profile->model);
    return profile;
}

std::unique_ptr<LoadedProfile> ReadProfile(const JsonCursor& root, Problems& problems) {
    ProfileFrames frames(root.At("frames"));
    ProfileEnumerations enumerations(root.At("enumerations"));
    ProfileElements elements(root.At("elements"), frames, enumerations);
    const ProfileObjects objects(root.At("objects"), elements);
    const ProfileAlarms alarms(root.At("alarms"), elements, objects);
    if (HasError(problems)) {
        return nullptr;
    }
    frames.ReportUnused();
    enumerations.ReportUnused();
    elements.ReportUnused();
    elements.PublishLabels();
    objects.PublishLabels();
    return MakeProfile(root.At("device"), frames, objects, alarms);
}

}  // namespace

ProfileLoader::Result ProfileLoader::Load(std::string_view text) {
    static const JsonStructure STRUCTURE(GetSchema());
    Result result;
    const LocatedJson document = LocatedJson::Parse(text, result.problems);
    if (document.IsRead()) {
        const nlohmann::json content = STRUCTURE.Check(document, result.problems);
        result.profile = ReadProfile(JsonCursor(document, content, result.problems), result.problems);
    }
    SortByLine(result.problems);
    return result;
}

}  // namespace kzm::ModbusGateway
