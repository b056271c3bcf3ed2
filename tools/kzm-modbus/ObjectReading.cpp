#include "ObjectReading.h"

#include <algorithm>

#include "Support/Status.h"
#include "WhyNoValue.h"
#include "gateway/model/ObjectGroupAdapter.h"
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

// Whether an attribute was written since the node was as at the start.
bool HoldsAttributes(const json& node, const json& start) {
    return std::any_of(node.items().begin(), node.items().end(), [&](const auto& member) {
        return IsAttribute(member.key()) && (!start.contains(member.key()) || start[member.key()] != member.value());
    });
}

// An element may hold attributes and further elements.
void AddElements(const std::string& path, const json& node, const json& start, std::vector<ObjectPart>& parts) {
    if (HoldsAttributes(node, start)) {
        parts.push_back({path, node, ""});
    }
    for (const auto& [name, child] : node.items()) {
        if (child.is_object() && !IsAttribute(name)) {
            AddElements(path.empty() ? name : path + "/" + name, child, start.value(name, json::object()), parts);
        }
    }
}

// The parts that were filled since the object was as at the start; the whole object if none was.
std::vector<ObjectPart> PartsOf(const json& value, const json& start) {
    std::vector<ObjectPart> parts;
    if (value.contains("elements")) {
        AddElements("", value["elements"], start.value("elements", json::object()), parts);
    }
    if (parts.empty() || HoldsAttributes(value, start)) {
        parts.insert(parts.begin(), {"", value, ""});
    }
    return parts;
}

// Keeps the log free of a request that only repeats another.
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

// Asks each adapter alone to find the part that it fills.
void Explain(const LoadedProfile& profile, const ObjectGroupAdapter::Adapters& adapters, const Cache& cache,
             std::vector<ObjectPart>& parts) {
    const Silence silence;
    for (const std::shared_ptr<VortaObjectAdapter>& adapter : adapters) {
        VortaORBAObject alone("", "", "", json::object());
        adapter->GetObject(cache, profile.model->IsBigEndian(), /*ignoreCacheAge=*/false, alone);
        ObjectPart part = PartsOf(alone.GetValue(), json::object()).front();
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
    return !part.attributes.contains("value") || part.attributes["value"].is_null();
}

void RoundNumbers(json& value, NumberPrecision precision) {
    if (value.is_number_float()) {
        value = RoundedTo(value.get<double>(), precision);
    } else if (value.is_structured()) {
        for (json& member : value) {
            RoundNumbers(member, precision);
        }
    }
}

// In an object, the values that the device gives.
void RoundValues(const LoadedProfile::Object& object, json& whole) {
    for (const auto& [path, precision] : object.precisions) {
        const json::json_pointer place((path.empty() ? "" : "/elements/" + path) + "/value");
        if (whole.contains(place)) {
            RoundNumbers(whole[place], precision);
        }
    }
}

ObjectReading ReadObject(const LoadedProfile& profile, const LoadedProfile::Object& object, const Cache& cache,
                         bool exact) {
    VortaORBAObject target(object.key, object.name, object.alias, object.structure);
    ObjectReading reading{&object, ModbusDeviceModel::Status::INVALID_ARGUMENT, {}, {}};
    try {
        reading.status = profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target);
        if (!exact) {
            RoundValues(object, target.GetValue());
        }
        reading.parts = PartsOf(target.GetValue(), object.structure);
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

std::vector<ObjectReading> ReadObjects(const LoadedProfile& profile, const Selection& selection, const Cache& cache,
                                       bool exact) {
    std::vector<ObjectReading> readings;
    for (const LoadedProfile::Object* object : selection) {
        readings.push_back(ReadObject(profile, *object, cache, exact));
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
            why += why.empty() ? "" : "; ";
            why += part.path.empty() ? part.why : part.path + ": " + part.why;
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
