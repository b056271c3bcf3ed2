#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace kzm::ModbusGateway {

// Where a part of a device model is written in its profile.
struct ProfilePlace {
    std::size_t line = 0;  // from 1 on
    std::string pointer;   // JSON pointer (RFC 6901)
    std::string name;      // of a named element; the element path of a part of an object; may be empty
    // The lines of its members. Beside those that it has itself: "order" is the device's word order where the element
    // has none of its own, "labels" the enumeration that "enumeration" names.
    std::map<std::string, std::size_t> lines;
};

}  // namespace kzm::ModbusGateway
