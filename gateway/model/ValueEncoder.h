#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "DataModel/ElementData.h"
#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// Why a value cannot be written, as a phrase for the user: "70000 is out of range", "21.55 would be read back as 21.5".
class KZM_GATEWAY_EXPORT CannotEncode : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A value as the registers of an element hold it. A plain record; for threads as any value.
struct KZM_GATEWAY_EXPORT EncodedValue {
    // The registers of one element.
    using Registers = std::vector<std::uint16_t>;

    Registers registers;    // in wire order, one per register of the element; bits outside the mask are 0
    Registers mask;         // as many; a bit is 1 where it belongs to the element
    nlohmann::json wanted;  // the JSON value that the element must decode to
    double tolerance = 0;   // how far a decoded number may be off by the rounding of its registers, in the value's unit

    // Throws CannotEncode unless `decoded` is the wanted value: a whole number exactly, any other number within the
    // tolerance. For the registers as they will be sent, with the bits of neighbouring elements.
    void CheckReadBack(const nlohmann::json& decoded) const;
};

// Encodes a value for writing: the inverse of ElementData::Build. The text is, as the logic code demands,
// - a decimal number in the value's unit ("12.5", "1e3", "-7", ".5", "007"),
// - "true", "false", "1" or "0",
// - a label of the element's enumeration, or the raw number or text of one; a number where it has no labels,
// - a text, which is filled up with NUL bytes.
// Of several raw values that decode to the value, the first that fits the mask and reads back is taken; if none reads
// back as the value, the nearest, so that CheckReadBack refuses it. Numbers are encoded exactly to 64 bits where the
// element has neither scale nor offset.
//
// Throws CannotEncode for a text that is none of these, a value that the type or the mask cannot hold, a type that
// does not fit the element's number of registers, and types that are not encoded: dates, versions, power factors and
// what is derived from them, frequency classes, scaled powers. Throws std::invalid_argument for an element whose
// "not available" pattern is not hexadecimal, as Build does. Logs only what Build logs. May be called by any number
// of threads.
KZM_GATEWAY_EXPORT EncodedValue EncodeValue(ModbusDeviceModel::DataModel::ElementData& element, bool deviceBigEndian,
                                            const std::string& text);

// What Build makes of registers in wire order; null where that is no value. Throws and logs as Build does. May be
// called by any number of threads.
KZM_GATEWAY_EXPORT nlohmann::json DecodeValue(ModbusDeviceModel::DataModel::ElementData& element, bool deviceBigEndian,
                                              const EncodedValue::Registers& registers);

}  // namespace kzm::ModbusGateway
