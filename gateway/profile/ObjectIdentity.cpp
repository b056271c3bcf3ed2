#include "gateway/profile/ObjectIdentity.h"

#include <stdexcept>

#include "edm/modbus/Vorta.h"

namespace kzm::ModbusGateway {

namespace Vorta = edm::modbus::Vorta;

namespace {

// Nothing for a faulty key, which is reported.
std::optional<ElementKey> ReadKey(const JsonCursor& place, bool ofAlarm) {
    try {
        ElementKey key = ElementKey::Find(place.Text());
        if (key.IsCustomAlarm() == ofAlarm) {
            return key;
        }
        place.Error(ofAlarm ? "the key of an alarm must be \"86b\" followed by its encoded alias"
                            : "this is the key of a custom alarm; move it to \"alarms\"");
    } catch (const std::invalid_argument& fault) {
        place.Error(fault.what());
    }
    return std::nullopt;
}

ObjectIdentity Read(const JsonCursor& place, const char* nameMember, bool ofAlarm) {
    ObjectIdentity identity;
    if (place.Has("key")) {
        identity.key = ReadKey(place.At("key"), ofAlarm);
    }
    if (identity.key) {
        identity.name = identity.key->GetName();
        identity.alias = identity.key->GetAlias();
    }
    if (place.Has(nameMember)) {
        identity.name = place.At(nameMember).Text();
    }
    if (place.Has("alias")) {
        identity.alias = place.At("alias").Text();
    }
    return identity;
}

void EncodeKey(const edm::modbus::StringCleaner& codec, ObjectIdentity& identity) {
    if (!identity.alias.empty()) {
        std::string key = identity.alias;
        codec.Encode(key);
        identity.key = ElementKey::Find(key);
    }
}

}  // namespace

ObjectIdentity ObjectIdentity::ReadObject(const JsonCursor& object) {
    ObjectIdentity identity = Read(object, "name", /*ofAlarm=*/false);
    if (!identity.key && Vorta::IsCustomMeasurementIoTName(identity.name)) {
        EncodeKey(Vorta::GetCustomMeasurementNameCodec(), identity);
    }
    return identity;
}

ObjectIdentity ObjectIdentity::ReadAlarm(const JsonCursor& alarm) {
    ObjectIdentity identity = Read(alarm, "object", /*ofAlarm=*/true);
    if (identity.name.empty() && !alarm.Has("key")) {
        identity.name = Vorta::GetCustomAlarmIotName();
    }
    if (!identity.key && identity.name == Vorta::GetCustomAlarmIotName()) {
        EncodeKey(Vorta::GetCustomAlarmNameCodec(), identity);
    }
    return identity;
}

std::string DescribeObject(const std::string& name, const std::string& alias) {
    return "object " + Quoted(name) + (alias.empty() ? "" : " with the alias " + Quoted(alias));
}

}  // namespace kzm::ModbusGateway
