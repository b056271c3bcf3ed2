#pragma once

#include <optional>
#include <string>

#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ElementKey.h"

namespace kzm::ModbusGateway {

// What an object or an alarm of a profile is called: what it states itself counts before what its key says.
struct ObjectIdentity {
    // Report a faulty key; the name is then empty unless it is stated.
    static ObjectIdentity OfObject(const JsonCursor& object);
    static ObjectIdentity OfAlarm(const JsonCursor& alarm);

    std::string name;
    std::string alias;
    // Custom measurements and alarms have the key that their alias makes, also where none is stated.
    std::optional<ElementKey> key;
};

}  // namespace kzm::ModbusGateway
