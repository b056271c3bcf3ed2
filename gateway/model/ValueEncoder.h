#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "DataModel/ElementData.h"

namespace kzm::ModbusGateway {

// Why a value cannot be written: "70000 is out of range", "21.55 would be read back as 21.5".
class CannotEncode : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A value as an element holds it.
struct EncodedValue {
    using Registers = std::vector<std::uint16_t>;

    Registers registers;    // in wire order; the bits outside the mask are 0
    Registers mask;         // the bits that belong to the element
    nlohmann::json wanted;  // what the element must be when these are read
    double tolerance = 0;   // how far a number may be off by the precision of its registers

    // Throws CannotEncode unless `decoded` is what is wanted: a whole number exactly, any other number as near as the
    // registers can hold it.
    void CheckReadBack(const nlohmann::json& decoded) const;
};

// The inverse of ElementData::Build. `text`: a JSON number; true or false; a label of the enumeration or the raw number
// of one; a text; as the logic code demands. Throws CannotEncode for a value that the code cannot hold or that does not
// fit the mask, and for codes that are not encoded: dates, versions, power factors and what is derived from them,
// scaled powers.
EncodedValue EncodeValue(const ModbusDeviceModel::DataModel::ElementData& element, bool deviceBigEndian,
                         const std::string& text);

// What Build makes of registers; null where that is no value.
nlohmann::json DecodeValue(ModbusDeviceModel::DataModel::ElementData& element, bool deviceBigEndian,
                           const EncodedValue::Registers& registers);

}  // namespace kzm::ModbusGateway
