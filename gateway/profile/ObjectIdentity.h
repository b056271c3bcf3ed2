#pragma once

#include <optional>
#include <string>

#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ElementKey.h"

namespace kzm::ModbusGateway {

// What an object or an alarm of a profile is called: what it states itself takes precedence over what its key says.
struct ObjectIdentity {
    // Reports a faulty key as an error; the name is then empty unless it is stated.
    static ObjectIdentity ReadObject(const JsonCursor& object);
    static ObjectIdentity ReadAlarm(const JsonCursor& alarm);

    std::string name;
    std::string alias;
    // Custom measurements and alarms have the key that their alias makes, even if none is stated.
    std::optional<ElementKey> key;
};

// `object "Flow" with the alias "east"`.
std::string DescribeObject(const std::string& name, const std::string& alias);

}  // namespace kzm::ModbusGateway
