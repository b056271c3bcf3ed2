#include "ObjectReading.h"

#include <algorithm>

#include "ReadElements.h"
#include "Support/Status.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
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
        parts.push_back({path, node});
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
        parts.insert(parts.begin(), {"", value});
    }
    return parts;
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

void Describe(const Explanation& explanation, ObjectPart& part) {
    part.why = LacksValue(part) ? explanation.why.Text() : "";
    part.registers = RegistersOf(explanation);
    if (const std::uint64_t received = ReceivedOf(explanation)) {
        part.age = static_cast<std::int64_t>(DateTime::DateTime::GetRealTimeInMilliseconds() - received);
    }
}

// The part of that path; a new one where the device filled nothing.
ObjectPart& PartAt(const std::string& path, std::vector<ObjectPart>& parts) {
    const auto known = std::ranges::find(parts, path, &ObjectPart::path);
    return known == parts.end() ? parts.emplace_back(ObjectPart{path, json::object()}) : *known;
}

void DescribeParts(ObjectReading& reading) {
    if (reading.explanation.kind == Explanation::Kind::GROUP) {
        for (const Explanation& part : reading.explanation.parts) {
            Describe(part, PartAt(part.place ? part.place->name : "", reading.parts));
        }
        return;
    }
    for (ObjectPart& part : reading.parts) {
        Describe(reading.explanation, part);
    }
}

ObjectReading ReadObject(const LoadedProfile& profile, const LoadedProfile::Object& object, const Cache& cache,
                         bool exact) {
    ObjectReading reading{&object, {}, {}, {}};
    try {
        reading.explanation = Explain(profile, object, {cache});
        reading.value = reading.explanation.object;
        if (!exact) {
            RoundValues(object, reading.value);
        }
        reading.parts = PartsOf(reading.value, object.structure);
        DescribeParts(reading);
    } catch (const json::exception& error) {
        // A profile may ask for what an object cannot hold.
        reading.explanation.why = {.reason = ModbusDeviceModel::DataModel::Reason::MISCONFIGURED, .text = error.what()};
        reading.explanation.requestStatus = ModbusDeviceModel::Status::INVALID_ARGUMENT;
        reading.value = object.structure;
        reading.parts = {{"", json::object(), error.what()}};
    }
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

std::string ToJsonLine(const ObjectReading& reading, const std::string& time, bool raw) {
    json line{{"name", reading.object->name},
              {"alias", reading.object->alias},
              {"unit", reading.object->unit},
              {"status", static_cast<std::int32_t>(reading.explanation.requestStatus)},
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
    AddReason(reading.explanation, line);
    if (raw) {
        AddRaw(reading.explanation, line);
    }
    if (!time.empty()) {
        line["time"] = time;
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace kzm::ModbusTool
