#include "gateway/ProfileObjects.h"

#include <algorithm>
#include <array>

#include "DataModel/SimpleObjectAdapter.h"
#include "gateway/ObjectGroupAdapter.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DataModel::AttributeAdapterType;
using ModbusDeviceModel::DataModel::DataObjectAdapter;
using ModbusDeviceModel::DataModel::SimpleObjectAdapter;

namespace {

bool MayBeText(const ProfileElement& element) {
    return element.kind == ValueKind::TEXT || element.kind == ValueKind::LABEL;
}

bool MayBeBoolean(const ProfileElement& element) {
    return element.kind == ValueKind::BOOLEAN || !element.labels.empty();
}

bool MayBeTimestamp(const ProfileElement& element) {
    return element.kind == ValueKind::DATE_TIME || element.kind == ValueKind::TEXT;
}

bool MayBeAnything(const ProfileElement&) {
    return true;
}

struct Role {
    AttributeAdapterType type;
    const char* member;
    bool (*suits)(const ProfileElement&);
    const char* needed;
};

constexpr std::array<Role, 4> ROLES{{
    {AttributeAdapterType::VALUE, "value", MayBeAnything, ""},
    {AttributeAdapterType::AVAILABILITY, "availability", MayBeBoolean,
     "true or false, or labels translated into these"},
    {AttributeAdapterType::QUALITY, "quality", MayBeText, "a text; \"Good\" means good"},
    {AttributeAdapterType::TIMESTAMP, "timestamp", MayBeTimestamp, "a date and time, or a text"},
}};

bool IsEscapedRight(const std::string& path) {
    for (auto i = path.find('~'); i != std::string::npos; i = path.find('~', i + 1)) {
        if (i + 1 == path.size() || (path[i + 1] != '0' && path[i + 1] != '1')) {
            return false;
        }
    }
    return true;
}

// The path among `paths` of which an attribute stands where `path` leads through; empty for none.
std::string PathInTheWay(const std::string& path, const nlohmann::json& paths) {
    for (auto end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
        const auto next = path.find('/', end + 1);
        const std::string token = path.substr(end + 1, next == std::string::npos ? next : next - end - 1);
        if ((token == "value" || token == "quality" || token == "datetime") && paths.contains(path.substr(0, end))) {
            return path.substr(0, end);
        }
    }
    return "";
}

std::string UrnOf(const JsonCursor& object, bool plain) {
    const std::string alias = object.At("alias").Text();
    return plain               ? ""
           : object.Has("urn") ? object.At("urn").Text()
                               : object.At("name").Text() + (alias.empty() ? "" : '/' + alias);
}

}  // namespace

ProfileObjects::ProfileObjects(const JsonCursor& section, ProfileElements& elements) : mElements(elements) {
    section.ForEach([this](const std::string&, const JsonCursor& place) { ReadObject(place); });
}

void ProfileObjects::ReadObject(const JsonCursor& place) {
    const std::string name = place.At("name").Text();
    const std::string alias = place.At("alias").Text();
    const bool plain = place.Has("plain") && place.At("plain")->get<bool>();
    Draft draft{place, UrnOf(place, plain), plain};
    if (place.Has("value")) {
        ReadRoles(place, "", draft);
    }
    ReadPaths(draft);
    ReadLabels(draft);
    if (name.empty()) {
        return;  // reported already
    }
    const auto adapter = draft.adapters.size() == 1 ? draft.adapters.front() : nullptr;
    const auto [earlier, isNew] = mKnown.try_emplace(
        {name, alias},
        Known{place, std::dynamic_pointer_cast<DataObjectAdapter>(adapter), draft.kind, draft.adapters.empty()});
    if (!isNew) {
        place.At("name").Error(
            "the object " + Quoted(name) + (alias.empty() ? "" : " with the alias " + Quoted(alias)) +
            " stands in the profile already, on line " + std::to_string(earlier->second.place.GetLine()));
    }
    if (draft.adapters.empty()) {
        return;  // reported already
    }
    KeepByName(mUnits, place, "unit", place.At("unit").Text());
    KeepByName(mClassNames, place, "class", place.Has("class") ? place.At("class").Text() : draft.className);
    mObjects.push_back({name, alias, place.At("unit").Text(),
                        adapter ? adapter : std::make_shared<ObjectGroupAdapter>(draft.adapters)});
}

void ProfileObjects::ReadPaths(Draft& draft) {
    const JsonCursor paths = draft.place.At("elements");
    paths.ForEach([&](const std::string& path, const JsonCursor& roles) {
        const std::string other = PathInTheWay(path, *paths);
        if (path.empty() || !IsEscapedRight(path)) {
            roles.Error(
                "this is no element path; allowed: names with \"/\" between, in which \"~0\" and \"~1\" stand "
                "for \"~\" and \"/\"");
        } else if (!other.empty()) {
            roles.Error("the path leads through an attribute of the element path " + Quoted(other));
        } else {
            ReadRoles(roles, path, draft);
        }
    });
}

void ProfileObjects::ReadRoles(const JsonCursor& roles, const std::string& path, Draft& draft) {
    const auto adapter = std::make_shared<DataObjectAdapter>(path, draft.urn);
    std::shared_ptr<const ProfileElement> value;
    for (const Role& role : ROLES) {
        const JsonCursor place = roles.At(role.member);
        const auto element = mElements.Get(place);
        if (!element) {
            draft.labelsKnown = draft.labelsKnown && place->is_null();
            continue;
        }
        if (role.type == AttributeAdapterType::VALUE) {
            value = element;
        } else if (draft.plain) {
            place.Error("a plain object has a value and nothing else");
        } else if (!role.suits(*element)) {
            place.Error("the element does not suit the role " + Quoted(role.member) + "; needed: " + role.needed);
        }
        draft.labels.insert(element->labels.begin(), element->labels.end());
        adapter->SetAdapter(role.type, element->adapter);
    }
    if (!value) {
        return;  // reported already
    }
    if (draft.adapters.empty()) {
        draft.className = value->className;
        draft.kind = value->kind;
    }
    draft.adapters.push_back(draft.plain ? Adapter(std::make_shared<SimpleObjectAdapter>(path, value->adapter))
                                         : Adapter(adapter));
}

void ProfileObjects::ReadLabels(const Draft& draft) {
    const JsonCursor labels = draft.place.At("labels");
    const Names known(draft.labels.begin(), draft.labels.end());
    labels.ForEach([&](const std::string& label, const JsonCursor& value) {
        if (draft.labelsKnown && draft.labels.count(label) == 0) {
            value.Error("no enumeration of the object's elements has this label" + Alternatives(label, known));
        }
    });
    for (const auto& label : known) {
        const JsonCursor place = labels.At(label);
        Translation translation{place->is_null() ? nlohmann::json(label) : *place, draft.place};
        const auto [earlier, isNew] = mLabels.try_emplace({draft.urn, label}, translation);
        if (!isNew && earlier->second.value != translation.value) {
            (place->is_null() ? draft.place : place)
                .Error("the label " + Quoted(label) + " is translated into " + Cited(translation.value) +
                       ", but by the object on line " + std::to_string(earlier->second.place.GetLine()) + " into " +
                       Cited(earlier->second.value) +
                       "; objects with one urn (all plain ones have none) share their labels");
        }
    }
}

void ProfileObjects::KeepByName(TextByName& texts, const JsonCursor& object, const char* member,
                                const std::string& text) {
    if (text.empty()) {
        return;
    }
    const auto [kept, isNew] = texts.try_emplace(object.At("name").Text(), text);
    if (!isNew && kept->second != text) {
        (object.Has(member) ? object.At(member) : object)
            .Warning("the model keeps one " + std::string(member) +
                     " for all objects of a name: " + Quoted(kept->second) + ", not " + Quoted(text));
    }
}

ModbusDeviceModel::Device::DeviceModel::ObjectAdapters ProfileObjects::GetAdapters() const {
    ModbusDeviceModel::Device::DeviceModel::ObjectAdapters adapters;
    for (const auto& object : mObjects) {
        adapters.emplace(std::pair(object.name, object.alias), object.adapter);
    }
    return adapters;
}

const ProfileObjects::Known* ProfileObjects::Find(const std::string& name, const std::string& alias) const {
    const auto found = mKnown.find({name, alias});
    return found == mKnown.end() ? nullptr : &found->second;
}

Names ProfileObjects::GetNames() const {
    Names names;
    for (const auto& known : mKnown) {
        names.push_back(known.first.first);
    }
    return names;
}

void ProfileObjects::PublishLabels() const {
    for (const auto& [key, translation] : mLabels) {
        kzm::edm::dictionary::EdmEnumToIotValue::SetLabel(key.first, key.second, translation.value);
    }
}

}  // namespace kzm::ModbusGateway
