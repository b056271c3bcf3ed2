#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "Export.h"

namespace kz::orba {
class VortaORBAObject;
}

namespace kzm::ModbusDeviceModel::DataModel {

// Where in an object an adapter writes its attributes: at the top if the path is empty, otherwise in the element of
// that name under "elements". The path is split like a JSON pointer (RFC 6901): "/" separates, "~0" and "~1" stand for
// "~" and "/".
class KZM_MODBUS_EXPORT ElementPath {
public:
    // `path`: empty, or element names joined by "/". Throws the JSON library's parse_error 108 for a malformed "~".
    explicit ElementPath(const std::string& path);

    // Sets one attribute. Missing parents, and null ones, become objects. In an array a token is an index: one past the
    // end fills the array with nulls up to it, "-" appends. Throws the JSON library's error, with the parents made so
    // far left behind, for a token that is not an index (parse_error 106 or 109, out_of_range 404 or 410) and where a
    // parent is neither object nor array (out_of_range 404); type_error 305 if the path is empty and the root of the
    // object is neither an object nor null.
    void SetAttribute(kz::orba::VortaORBAObject& object, const std::string& key, nlohmann::json&& value) const;

    // Whether attributes are written at the top of the object.
    bool IsEmpty() const { return mTokens.empty(); }

private:
    std::vector<std::string> mTokens;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
