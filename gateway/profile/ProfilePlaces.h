#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "gateway/json/JsonCursor.h"
#include "gateway/profile/ProfilePlace.h"

namespace kzm::ModbusGateway {

// Where the parts of a device model are written, by their addresses.
using ProfilePlaces = std::unordered_map<const void*, std::shared_ptr<const ProfilePlace>>;

// The place of what is written at a cursor. `name`: see ProfilePlace.
inline std::shared_ptr<ProfilePlace> PlaceOf(const JsonCursor& cursor, const std::string& name = {}) {
    auto place = std::make_shared<ProfilePlace>();
    place->line = cursor.GetLine();
    place->pointer = cursor.GetPointer();
    place->name = name;
    if (cursor->is_object()) {
        cursor.ForEach([&](const std::string& member, const JsonCursor& at) { place->lines[member] = at.GetLine(); });
    }
    return place;
}

}  // namespace kzm::ModbusGateway
