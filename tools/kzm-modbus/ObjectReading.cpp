#include "ObjectReading.h"

#include <algorithm>

#include "Support/Status.h"
#include "WhyNoValue.h"
#include "gateway/ObjectGroupAdapter.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using kz::orba::VortaORBAObject;
using ModbusDeviceModel::DataModel::VortaObjectAdapter;
using nlohmann::json;

namespace {

bool IsAttribute(const std::string& name) {
    return name == "value" || name == "quality" || name == "datetime";
}

bool HoldsAttributes(const json& node) {
    return node.contains("value") || node.contains("quality") || node.contains("datetime");
}

// An element may hold attributes and further elements.
void AddElements(const std::string& path, const json& node, std::vector<ObjectPart>& parts) {
    if (HoldsAttributes(node)) {
        parts.push_back({path, node, ""});
    }
    for (const auto& [name, child] : node.items()) {
        if (child.is_object() && !IsAttribute(name)) {
            AddElements(path.empty() ? name : path + "/" + name, child, parts);
        }
    }
}

std::vector<ObjectPart> PartsOf(const json& value) {
    std::vector<ObjectPart> parts;
    if (value.contains("elements")) {
        AddElements("", value["elements"], parts);
    }
    if (parts.empty() || HoldsAttributes(value)) {
        parts.insert(parts.begin(), {"", value, ""});
    }
    return parts;
}

// Keeps the log free of the lines of a request that was made before.
class Silence {
public:
    Silence() : mLevel(Log::RootLogger::GetInstance().GetLevel()) {
        Log::RootLogger::GetInstance().SetLevel(Log::OrbaLogLevel::NONE);
    }
    ~Silence() { Log::RootLogger::GetInstance().SetLevel(mLevel); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    Log::OrbaLogLevel mLevel;
};

// Asks each adapter alone, to learn which part it fills.
void Explain(const LoadedProfile& profile, const ObjectGroupAdapter::Adapters& adapters, const Cache& cache,
             std::vector<ObjectPart>& parts) {
    const Silence silence;
    for (const std::shared_ptr<VortaObjectAdapter>& adapter : adapters) {
        VortaORBAObject alone("", "", "", json::object());
        adapter->GetObject(cache, profile.model->IsBigEndian(), /*ignoreCacheAge=*/false, alone);
        ObjectPart part = PartsOf(alone.GetValue()).front();
        if (part.attributes.contains("value")) {
            continue;
        }
        part.why = WhyNoValue(profile, *adapter, cache);
        const auto known =
            std::find_if(parts.begin(), parts.end(), [&](const auto& other) { return other.path == part.path; });
        known == parts.end() ? parts.push_back(part) : void(known->why = part.why);
    }
}

ObjectGroupAdapter::Adapters AdaptersOf(const std::shared_ptr<VortaObjectAdapter>& adapter) {
    const auto group = std::dynamic_pointer_cast<ObjectGroupAdapter>(adapter);
    return group ? group->GetAdapters() : ObjectGroupAdapter::Adapters{adapter};
}

bool LacksValue(const ObjectPart& part) {
    return !part.attributes.contains("value");
}

ObjectReading ReadObject(const LoadedProfile& profile, const LoadedProfile::Object& object, const Cache& cache) {
    VortaORBAObject target("", object.name, object.alias, json::object());
    ObjectReading reading{&object, ModbusDeviceModel::Status::INVALID_ARGUMENT, {}, {}};
    try {
        reading.status = profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target);
        reading.parts = PartsOf(target.GetValue());
        const bool failed = reading.status != ModbusDeviceModel::Status::SUCCESS;
        if (failed || std::any_of(reading.parts.begin(), reading.parts.end(), LacksValue)) {
            Explain(profile, AdaptersOf(object.adapter), cache, reading.parts);
        }
    } catch (const json::exception& error) {
        // A profile may ask for what an object cannot hold.
        reading.parts.push_back({"", json::object(), error.what()});
    }
    reading.value = target.GetValue();
    return reading;
}

}  // namespace

std::vector<ObjectReading> ReadObjects(const LoadedProfile& profile, const Selection& selection, const Cache& cache) {
    std::vector<ObjectReading> readings;
    for (const LoadedProfile::Object* object : selection) {
        readings.push_back(ReadObject(profile, *object, cache));
    }
    return readings;
}

std::string ToJsonLine(const ObjectReading& reading, const std::string& time) {
    json line{{"name", reading.object->name},
              {"alias", reading.object->alias},
              {"unit", reading.object->unit},
              {"status", static_cast<std::int32_t>(reading.status)},
              {"value", reading.value}};
    std::string why;
    for (const ObjectPart& part : reading.parts) {
        if (!part.why.empty()) {
            why += (why.empty() ? "" : "; ") + part.path + (part.path.empty() ? "" : ": ") + part.why;
        }
    }
    if (!why.empty()) {
        line["why"] = why;
    }
    if (!time.empty()) {
        line["time"] = time;
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace kzm::ModbusTool
