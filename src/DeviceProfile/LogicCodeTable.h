#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "DeviceProfile/EnumerationPairData.h"
#include "DeviceProfile/LogicCodeIdentifier.h"
#include "Export.h"

// Everything that depends on a logic code alone: one constant row per code. Thread-safe; nothing is logged.
namespace kzm::ModbusDeviceModel::DeviceProfile {

// How the masked bytes of an element are put into the raw record (DataModel/RawRecord.h).
enum class Gathering : std::uint8_t {
    BIG_ENDIAN_64,          // the last eight bytes, most significant first
    LITTLE_ENDIAN_64,       // the first eight bytes, least significant first
    BIG_ENDIAN_32,          // the last four bytes, most significant first
    SWAPPED_BIG_ENDIAN_32,  // as BIG_ENDIAN_32, after swapping the first two words once more
    MASKED_BYTES,           // the bytes whose mask byte is not 0, one after another
    SWAPPED_BYTES,          // with the two bytes of every word exchanged
    BYTES,                  // unchanged
};

// How the raw record is read: as an integer of that many bits, as an IEEE 754 number, or as bytes. NONE: not at all.
enum class RawView : std::uint8_t { NONE, U8, S8, U16, S16, U32, S32, U64, S64, FLOAT, DOUBLE, BYTES };

// The JSON type of a number and its range. S64_AS_FLOAT: in the range of a signed 64-bit integer, but stored as
// floating point without rounding. NONE: not a number, or a number without a range.
enum class Output : std::uint8_t { NONE, U8, U16, U32, U64, S16, S32, S64, FLOAT, S64_AS_FLOAT };

// The conversion of the raw record. Switches over families list all of them, so that the compiler names every place
// where a new one is missing.
enum class Family : std::uint8_t {
    NONE,                  // no conversion
    NUMBER,                // an integer or a float32
    DOUBLE,                // a float64
    BOOLEAN,               // true for every number but 0
    DECIMAL_WORDS,         // four decimal digits per register, least significant register first
    ENUMERATION,           // the label of a number
    SHIFTED_ENUMERATION,   // the same after shifting the number right until the mask's lowest bit is bit 0
    TEXT_ENUMERATION,      // the label of a text
    DECIMAL_TEXT,          // an integer as text
    POWER_FACTOR,          // IEEE convention, -2 to 2, folded to -1 to 1
    QUADRANT,              // quadrant of the power plane, from a power factor
    LAG_LEAD,              // leading or lagging load, from a power factor
    INDUCTIVE_CAPACITIVE,  // inductive or capacitive load, from a power factor
    FREQUENCY_CLASS,       // -2 for a grid of 50 or 60 Hz, -1 for 400 Hz
    TEXT,                  // characters up to the first NUL
    DATE_IEC870,           // the date and time layouts that ElementData decodes
    DATE_3_REGISTERS,
    DATE_ULP,
    DATE_CM,
    DATE_MSP,
    VERSION_2_3,    // five decimal digits as version text: two and three of them,
    VERSION_1_1_2,  // the last four: one, one and two,
    VERSION_1_1_3,  // one, one and three
    SCALED_POWER,   // times a power of ten that another element gives (ExtendedElementData)
};

// What an element's scale factor and offset do to the values of a family.
enum class Scaling : std::uint8_t { NONE, FACTOR, FACTOR_AND_OFFSET };

// Data-model class of a measurement. NONE: the code is unknown.
enum class ValueClass : std::uint8_t { BOOLEAN, INTEGER, FLOAT, STRING, DATE_TIME, NONE };

// What is known of one logic code.
struct LogicCodeRow {
    std::uint8_t code;          // 0 to 62
    std::string_view name;      // as written in device profiles
    std::uint8_t minRegisters;  // fewest registers that an element of this code spans, 1 to 127
    std::uint8_t maxRegisters;  // most registers, up to 127
    Gathering gathering;        // how its bytes are gathered into the raw record
    bool wordsAlwaysSwapped;    // whatever order the element and the device have
    RawView view;               // what the raw record is read as
    Family family;              // how the raw value becomes the value
    Output output;              // the number type that the value must fit
    ValueClass valueClass;      // the class of a measurement of this code
    EnumerationType labelType;  // how labels are looked up; NONE: the code has no labels
};

// The most registers that an element can span: 255 bytes is the longest that is decoded.
inline constexpr std::uint8_t MAX_ELEMENT_REGISTERS = 127;

// All rows; row n is code n.
KZM_MODBUS_EXPORT std::span<const LogicCodeRow> LogicCodeRows();

// The row of a code. An unknown code has a row without name, conversion, class and labels, and is gathered like a
// number.
KZM_MODBUS_EXPORT const LogicCodeRow& RowOf(LogicCodeIdentifier logicCode);

// The scaling of a family's values.
KZM_MODBUS_EXPORT Scaling ScalingOf(Family family);

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
