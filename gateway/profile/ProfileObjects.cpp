#include "gateway/profile/ProfileObjects.h"

#include <algorithm>
#include <array>

#include "DataModel/SimpleObjectAdapter.h"
#include "gateway/model/ObjectGroupAdapter.h"
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
    const char* attribute;  // that a device element feeds by the dictionary; empty for none
    bool (*suits)(const ProfileElement&);
    const char* needed;
};

constexpr std::array<Role, 4> ROLES{{
    {AttributeAdapterType::VALUE, "value", "value", MayBeAnything, ""},
    {AttributeAdapterType::AVAILABILITY, "availability", "", MayBeBoolean,
     "true or false, or labels translated into these"},
    {AttributeAdapterType::QUALITY, "quality", "quality", MayBeText, "a text; \"Good\" means good"},
    {AttributeAdapterType::TIMESTAMP, "timestamp", "datetime", MayBeTimestamp, "a date and time, or a text"},
}};

bool IsEscapedRight(const std::string& path) {
    for (auto i = path.find('~'); i != std::string::npos; i = path.find('~', i + 1)) {
        if (i + 1 == path.size() || (path[i + 1] != '0' && path[i + 1] != '1')) {
            return false;
        }
    }
    return true;
}

// Whether the path names an array's item past 255: the library would fill the array up to it.
bool HasLargeIndex(const std::string& path) {
    for (nlohmann::json::json_pointer rest("/" + path); !rest.empty(); rest.pop_back()) {
        const std::string& token = rest.back();
        const bool isIndex = !token.empty() && token.find_first_not_of("0123456789") == token.npos;
        if (isIndex && (token.size() > 3 || std::stoi(token) > 255)) {
            return true;
        }
    }
    return false;
}

// The path among `paths` one of whose attributes `path` leads through; empty for none.
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

std::string UrnOf(const JsonCursor& object, const ObjectIdentity& identity, bool plain) {
    if (plain || object.Has("urn")) {
        return plain ? "" : object.At("urn").Text();
    }
    return identity.name + (identity.alias.empty() ? "" : '/' + identity.alias);
}

void ReportMissingValue(const JsonCursor& place, const std::string& path, const ElementKey& key) {
    const std::string source = key.GetSource(path, "value");
    const std::string ofPath = path.empty() ? "" : " of the element path " + Quoted(path);
    const std::string orElement =
        source.empty() ? "" : ", or the element " + Quoted(source) + " under \"elements\" of the profile";
    place.Error("nothing provides the value" + ofPath + "; needed: a \"value\" here" + orElement);
}

}  // namespace

ProfileObjects::ProfileObjects(const JsonCursor& section, ProfileElements& elements) : mElements(elements) {
    section.ForEach([this](const std::string&, const JsonCursor& place) { ReadObject(place); });
}

void ProfileObjects::ReadObject(const JsonCursor& place) {
    const ObjectIdentity identity = ObjectIdentity::ReadObject(place);
    const bool plain = place.Has("plain") && place.At("plain")->get<bool>();
    Draft draft{place, identity, plain, UrnOf(place, identity, plain)};
    ReadPaths(draft);
    ReadLabels(draft);
    if (identity.name.empty()) {
        const std::string key = place.At("key").Text();  // faulty, and reported
        mKnown.try_emplace({key, identity.alias}, Known{place, nullptr, draft.kind, /*faulty=*/true});
        return;
    }
    if (identity.key) {
        mNamesByKey.emplace(identity.key->GetText(), std::pair(identity.name, identity.alias));
    }
    const auto adapter = draft.adapters.size() == 1 ? draft.adapters.front() : nullptr;
    const auto [earlier, isNew] = mKnown.try_emplace(
        {identity.name, identity.alias},
        Known{place, std::dynamic_pointer_cast<DataObjectAdapter>(adapter), draft.kind, draft.adapters.empty()});
    if (!isNew) {
        place.At(place.Has("name") ? "name" : "key")
            .Error("the " + DescribeObject(identity.name, identity.alias) + " is already defined on line " +
                   std::to_string(earlier->second.place.GetLine()));
    }
    if (!draft.adapters.empty()) {
        Keep(draft);
    }
}

void ProfileObjects::Keep(const Draft& draft) {
    const auto& [name, alias, key] = draft.identity;
    LoadedProfile::Object object{
        name, alias, draft.place.At("unit").Text(), "", nlohmann::json::object(), draft.adapters.front()};
    object.precisions = draft.precisions;
    if (draft.adapters.size() > 1) {
        object.adapter = std::make_shared<ObjectGroupAdapter>(draft.adapters);
    }
    mPlaces[object.adapter.get()] = PlaceOf(draft.place);
    std::string className = draft.className;
    if (key) {
        object.key = key->GetText();
        object.unit = draft.place.Has("unit") ? object.unit : key->GetUnit();
        object.structure = key->MakeObject(name, alias, object.unit);
        className = key->GetClassName().empty() ? className : key->GetClassName();
    }
    KeepText(mUnits, draft, "unit", object.unit);
    KeepText(mClassNames, draft, "class", draft.place.Has("class") ? draft.place.At("class").Text() : className);
    mObjects.push_back(std::move(object));
}

void ProfileObjects::ReadPaths(Draft& draft) {
    const JsonCursor stated = draft.place.At("elements");
    Names paths = draft.identity.key ? draft.identity.key->GetPaths() : Names{};
    if (!draft.identity.key && draft.place.Has("value")) {
        paths.emplace_back("");
    }
    draft.mainPath = paths.empty() ? "" : paths.front();
    stated.ForEach([&](const std::string& path, const JsonCursor& roles) {
        const std::string other = PathInTheWay(path, *stated);
        if (path.empty() || !IsEscapedRight(path)) {
            roles.Error(
                "this is not an element path; allowed: names separated by \"/\", with \"~0\" for \"~\" and \"~1\" for "
                "\"/\"");
        } else if (HasLargeIndex(path)) {
            roles.Error("this path has an index above 255; allowed: 0 to 255");
        } else if (!other.empty()) {
            roles.Error("this path leads through an attribute of the element path " + Quoted(other));
        } else if (std::find(paths.begin(), paths.end(), path) == paths.end()) {
            paths.push_back(path);
        }
    });
    for (const std::string& path : paths) {
        ReadRoles(path, draft);
    }
}

// What the object states takes precedence over the named element that feeds it by the dictionary.
ProfileObjects::Filling ProfileObjects::FillRole(const char* member, const char* attribute, const std::string& path,
                                                 const Draft& draft) {
    const bool atTop = path == draft.mainPath && draft.place->contains(member);
    const JsonCursor roles = atTop ? draft.place : draft.place.At("elements").At(path);
    const auto& key = draft.identity.key;
    const std::string source = key ? key->GetSource(path, attribute) : "";
    Filling filling{draft.place};
    if (roles->contains(member)) {
        filling.place = roles.At(member);
        filling.element = mElements.Get(filling.place);
        filling.isThere = true;
    } else if (!source.empty() && mElements.Has(source)) {
        filling.source = source;
        filling.element = mElements.Get(source);
        filling.isThere = true;
    }
    return filling;
}

void ProfileObjects::ReadRoles(const std::string& path, Draft& draft) {
    const auto adapter = std::make_shared<DataObjectAdapter>(path, draft.urn);
    std::shared_ptr<const ProfileElement> value;
    bool isFaulty = false;
    for (const Role& role : ROLES) {
        const auto [place, source, element, isThere] = FillRole(role.member, role.attribute, path, draft);
        isFaulty = isFaulty || (isThere && !element);
        if (!element) {
            continue;
        }
        if (role.type == AttributeAdapterType::VALUE) {
            value = element;
        } else if (draft.plain && !source.empty()) {
            continue;  // not stated: a plain object goes without
        } else if (draft.plain) {
            place.Error("a plain object has a value and nothing else");
        } else if (!role.suits(*element)) {
            place.Error((source.empty() ? "this element" : "the element " + Quoted(source)) + " cannot be the " +
                        Quoted(role.member) + "; needed: " + role.needed);
        }
        draft.labels.insert(element->labels.begin(), element->labels.end());
        adapter->SetAdapter(role.type, element->adapter);
    }
    draft.labelsKnown = draft.labelsKnown && !isFaulty;
    const JsonCursor stated = path == draft.mainPath ? draft.place : draft.place.At("elements").At(path);
    if (!value && !isFaulty && !stated->is_null() && draft.identity.key) {
        ReportMissingValue(stated, path, *draft.identity.key);
    }
    if (value) {
        AddAdapter(*value, adapter, path, draft);
    }
}

// The first one is that of the object's main value.
void ProfileObjects::AddAdapter(const ProfileElement& value, const std::shared_ptr<DataObjectAdapter>& adapter,
                                const std::string& path, Draft& draft) {
    if (draft.adapters.empty()) {
        draft.className = value.className;
        draft.kind = value.kind;
    }
    draft.precisions.emplace(path, value.precision);
    draft.adapters.push_back(draft.plain ? Adapter(std::make_shared<SimpleObjectAdapter>(path, value.adapter))
                                         : Adapter(adapter));
    const bool atTop = path == draft.mainPath || !draft.place.At("elements")->contains(path);
    mPlaces[draft.adapters.back().get()] = PlaceOf(atTop ? draft.place : draft.place.At("elements").At(path), path);
}

void ProfileObjects::ReadLabels(const Draft& draft) {
    const JsonCursor labels = draft.place.At("labels");
    const Names known(draft.labels.begin(), draft.labels.end());
    labels.ForEach([&](const std::string& label, const JsonCursor& value) {
        if (draft.labelsKnown && draft.labels.count(label) == 0) {
            value.Error("none of the object's elements has the label " + Quoted(label) + Alternatives(label, known));
        }
    });
    for (const auto& label : known) {
        const JsonCursor place = labels.At(label);
        Translation translation{place->is_null() ? nlohmann::json(label) : *place, draft.place};
        const auto [earlier, isNew] = mLabels.try_emplace({draft.urn, label}, translation);
        if (!isNew && earlier->second.value != translation.value) {
            (place->is_null() ? draft.place : place)
                .Error("the label " + Quoted(label) + " is translated into " + Cited(translation.value) +
                       " here, but into " + Cited(earlier->second.value) + " by the object on line " +
                       std::to_string(earlier->second.place.GetLine()) +
                       "; objects with the same urn (plain objects have none) share their labels");
        }
    }
}

void ProfileObjects::KeepText(TextByName& texts, const Draft& draft, const char* member, const std::string& text) {
    const auto& [name, alias, key] = draft.identity;
    if (text.empty()) {
        return;
    }
    const auto [kept, isNew] = texts.try_emplace(key ? key->GetText() : name, text);
    if (!isNew && kept->second != text) {
        const JsonCursor place = draft.place.Has(member) ? draft.place.At(member) : draft.place;
        place.Warning("all objects of one " + std::string(key ? "key" : "name") + " share one " + member + ": " +
                      Quoted(kept->second) + " is used here, too, instead of " + Quoted(text));
    }
}

ModbusDeviceModel::Device::DeviceModel::ObjectAdapters ProfileObjects::GetAdapters() const {
    ModbusDeviceModel::Device::DeviceModel::ObjectAdapters adapters;
    for (const auto& object : mObjects) {
        adapters.emplace(std::pair(object.name, object.alias), object.adapter);
    }
    return adapters;
}

const ProfileObjects::Known* ProfileObjects::Find(const std::string& nameOrKey, const std::string& alias) const {
    auto found = mKnown.find({nameOrKey, alias});
    const auto byKey = alias.empty() && found == mKnown.end() ? mNamesByKey.find(nameOrKey) : mNamesByKey.end();
    if (byKey != mNamesByKey.end()) {
        found = mKnown.find(byKey->second);
    }
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
