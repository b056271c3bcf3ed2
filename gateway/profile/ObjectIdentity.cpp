#include "gateway/profile/ObjectIdentity.h"

#include "edm/modbus/Vorta.h"

namespace kzm::ModbusGateway {

namespace Vorta = edm::modbus::Vorta;

namespace {

std::optional<ElementKey> ReadKey(const JsonCursor& place, bool ofAlarm) {
    std::string fault;
    auto key = ElementKey::Find(place.Text(), fault);
    if (key && key->IsCustomAlarm() != ofAlarm) {
        fault =
            ofAlarm ? "the key of an alarm is \"86b\" and its encoded alias" : "custom alarms stand under \"alarms\"";
        key.reset();
    }
    if (!key) {
        place.Error(fault);
    }
    return key;
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
    std::string key = identity.alias;
    codec.Encode(key);
    std::string fault;
    identity.key = identity.alias.empty() ? std::nullopt : ElementKey::Find(key, fault);
}

}  // namespace

ObjectIdentity ObjectIdentity::OfObject(const JsonCursor& object) {
    ObjectIdentity identity = Read(object, "name", /*ofAlarm=*/false);
    if (!identity.key && Vorta::IsCustomMeasurementIoTName(identity.name)) {
        EncodeKey(Vorta::GetCustomMeasurementNameCodec(), identity);
    }
    return identity;
}

ObjectIdentity ObjectIdentity::OfAlarm(const JsonCursor& alarm) {
    ObjectIdentity identity = Read(alarm, "object", /*ofAlarm=*/true);
    if (identity.name.empty() && !alarm.Has("key")) {
        identity.name = Vorta::GetCustomAlarmIotName();
    }
    if (!identity.key && identity.name == Vorta::GetCustomAlarmIotName()) {
        EncodeKey(Vorta::GetCustomAlarmNameCodec(), identity);
    }
    return identity;
}

}  // namespace kzm::ModbusGateway
