#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "DeviceProfile/EnumerationPairData.h"
#include "DeviceProfile/LogicCodeIdentifier.h"

// Everything that depends on a logic code alone, one row per code. Whoever needs such a fact reads the row.
namespace kzm::ModbusDeviceModel::DeviceProfile {

// How the masked bytes of an element are put into the raw record.
enum class Gathering : std::uint8_t {
    BIG_ENDIAN_64,          // first byte most significant, the last eight bytes count
    LITTLE_ENDIAN_64,       // first byte least significant, the first eight bytes count
    BIG_ENDIAN_32,          // first byte most significant, the last four bytes count
    SWAPPED_BIG_ENDIAN_32,  // as BIG_ENDIAN_32 after a further swap of the first two words
    MASKED_BYTES,           // the bytes whose mask byte is not 0, one after another
    SWAPPED_BYTES,          // the two bytes of every word exchanged
    BYTES,                  // as they are
};

// How the raw record is read.
enum class RawView : std::uint8_t { NONE, U8, S8, U16, S16, U32, S32, U64, S64, FLOAT, DOUBLE, BYTES };

// Which JSON type a number becomes, with the range of that type. S64_AS_FLOAT: the range of a signed 64-bit integer,
// but stored as floating point, not rounded.
enum class Output : std::uint8_t { NONE, U8, U16, U32, U64, S16, S32, S64, FLOAT, S64_AS_FLOAT };

// Which conversion the code belongs to.
enum class Family : std::uint8_t {
    NONE,
    NUMBER,
    DOUBLE,
    BOOLEAN,
    DECIMAL_WORDS,  // four decimal digits per register, least significant register first
    ENUMERATION,
    SHIFTED_ENUMERATION,  // shifted right until the mask's lowest bit is bit 0
    TEXT_ENUMERATION,
    DECIMAL_TEXT,
    POWER_FACTOR,
    QUADRANT,
    LAG_LEAD,
    INDUCTIVE_CAPACITIVE,
    FREQUENCY_CLASS,
    TEXT,
    DATE_IEC870,
    DATE_3_REGISTERS,
    DATE_ULP,
    DATE_CM,
    DATE_MSP,
    VERSION_2_3,
    VERSION_1_1_2,
    VERSION_1_1_3,
    SCALED_POWER,  // the decimal exponent comes from another element
};

// Data-model class of a measurement with that code.
enum class ValueClass : std::uint8_t { BOOLEAN, INTEGER, FLOAT, STRING, DATE_TIME, NONE };

struct LogicCodeRow {
    std::uint8_t code;
    std::string_view name;  // as written in device profiles
    std::uint8_t minRegisters;
    std::uint8_t maxRegisters;
    Gathering gathering;
    bool wordsAlwaysSwapped;
    RawView view;
    Family family;
    Output output;
    ValueClass valueClass;
    EnumerationType enumerationType;
};

// The most registers that an element can span: 255 bytes is the longest that is decoded.
inline constexpr std::uint8_t MAX_ELEMENT_REGISTERS = 127;

namespace LogicCodeRows {

using enum Gathering;
using enum ValueClass;
using V = RawView;
using F = Family;
using O = Output;
using E = EnumerationType;

inline constexpr std::uint8_t MAX = MAX_ELEMENT_REGISTERS;
inline constexpr bool SWAPPED = true;
inline constexpr bool PLAIN = false;
inline constexpr E LABEL_U = E::UNSIGNED_INTEGER;

// clang-format off
inline constexpr std::array<LogicCodeRow, 63> TABLE{{
    { 0, "enum16",                 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    { 1, "state16",                1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    { 2, "uint16",                 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::U16,          INTEGER,   E::NONE},
    { 3, "int16-to-int32",         1,   1, BIG_ENDIAN_64,         PLAIN,   V::S16,    F::NUMBER,               O::S32,          INTEGER,   E::NONE},
    { 4, "uint16-to-int32",        1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::S32,          INTEGER,   E::NONE},
    { 5, "uint16-to-uint32",       1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::U32,          INTEGER,   E::NONE},
    { 6, "int16-to-float",         1,   1, BIG_ENDIAN_64,         PLAIN,   V::S16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 7, "uint16-to-float",        1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 8, "uint16-to-float-scaled", 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 9, "enum16-unshifted",       1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::ENUMERATION,          O::NONE,         STRING,    E::NONE},
    {10, "boolean",                1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::BOOLEAN,              O::NONE,         BOOLEAN,   E::NONE},
    {11, "enum32",                 2,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    {12, "state32",                2,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    {13, "int32",                  2,   2, BIG_ENDIAN_64,         PLAIN,   V::S32,    F::NUMBER,               O::S32,          INTEGER,   E::NONE},
    {14, "uint32",                 1,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::NUMBER,               O::U32,          INTEGER,   E::NONE},
    {15, "int32-to-int64",         2,   2, BIG_ENDIAN_64,         PLAIN,   V::S32,    F::NUMBER,               O::S64,          INTEGER,   E::NONE},
    {16, "uint32-to-int64",        1,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::NUMBER,               O::S64,          INTEGER,   E::NONE},
    {17, "int32-to-float",         2,   2, BIG_ENDIAN_64,         PLAIN,   V::S32,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {18, "uint32-to-float",        1,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {19, "mod10k-unsigned-3",      3,   3, BIG_ENDIAN_64,         SWAPPED, V::U16,    F::DECIMAL_WORDS,        O::S64,          INTEGER,   E::NONE},
    {20, "mod10k-signed-3",        3,   3, BIG_ENDIAN_64,         SWAPPED, V::S16,    F::DECIMAL_WORDS,        O::S64,          INTEGER,   E::NONE},
    {21, "mod10k-signed-4",        4,   4, BIG_ENDIAN_64,         SWAPPED, V::S16,    F::DECIMAL_WORDS,        O::S64,          INTEGER,   E::NONE},
    {22, "int8-to-float",          1,   1, BIG_ENDIAN_64,         PLAIN,   V::S8,     F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {23, "enum8",                  1,   1, BIG_ENDIAN_64,         PLAIN,   V::U8,     F::ENUMERATION,          O::NONE,         STRING,    LABEL_U},
    {24, "int64",                  4,   4, BIG_ENDIAN_64,         PLAIN,   V::S64,    F::NUMBER,               O::S64,          INTEGER,   E::NONE},
    {25, "int16",                  1,   1, BIG_ENDIAN_64,         PLAIN,   V::S16,    F::NUMBER,               O::S16,          INTEGER,   E::NONE},
    {26, "int64-counter",          3,   4, BIG_ENDIAN_64,         PLAIN,   V::S64,    F::NUMBER,               O::S64,          INTEGER,   E::NONE},
    {27, "uint64",                 1,   4, BIG_ENDIAN_64,         PLAIN,   V::U64,    F::NUMBER,               O::U64,          INTEGER,   E::NONE},
    {28, "int64-to-uint64",        3,   4, BIG_ENDIAN_64,         PLAIN,   V::S64,    F::NUMBER,               O::U64,          INTEGER,   E::NONE},
    {29, "int64-to-float",         4,   4, BIG_ENDIAN_64,         PLAIN,   V::S64,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {30, "enum-float32",           2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::ENUMERATION,          O::NONE,         STRING,    E::FLOAT},
    {31, "float32",                2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {32, "float64",                4,   4, BIG_ENDIAN_64,         PLAIN,   V::DOUBLE, F::DOUBLE,               O::NONE,         FLOAT,     E::NONE},
    {33, "float32-to-uint8",       2,   2, BIG_ENDIAN_64,         PLAIN,   V::FLOAT,  F::NUMBER,               O::U8,           INTEGER,   E::NONE},
    {34, "scaled-power-34",        1,   4, BIG_ENDIAN_64,         PLAIN,   V::NONE,   F::SCALED_POWER,         O::NONE,         INTEGER,   E::NONE},
    {35, "scaled-power-35",        1,   4, BIG_ENDIAN_64,         PLAIN,   V::NONE,   F::SCALED_POWER,         O::NONE,         INTEGER,   E::NONE},
    {36, "scaled-power-36",        1,   4, BIG_ENDIAN_64,         PLAIN,   V::NONE,   F::SCALED_POWER,         O::NONE,         FLOAT,     E::NONE},
    {37, "scaled-power-37",        1,   4, BIG_ENDIAN_64,         PLAIN,   V::NONE,   F::SCALED_POWER,         O::NONE,         FLOAT,     E::NONE},
    {38, "float32-to-int64",       2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::NUMBER,               O::S64,          INTEGER,   E::NONE},
    {39, "power-factor",           2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::POWER_FACTOR,         O::NONE,         FLOAT,     E::NONE},
    {40, "power-factor-quadrant",  2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::QUADRANT,             O::NONE,         STRING,    E::NONE},
    {41, "text-masked",            1, MAX, MASKED_BYTES,          PLAIN,   V::BYTES,  F::TEXT,                 O::NONE,         STRING,    E::NONE},
    {42, "enum-text-masked",       1, MAX, MASKED_BYTES,          PLAIN,   V::BYTES,  F::TEXT_ENUMERATION,     O::NONE,         STRING,    E::STRING},
    {43, "text-swapped",           1, MAX, SWAPPED_BYTES,         PLAIN,   V::BYTES,  F::TEXT,                 O::NONE,         STRING,    E::NONE},
    {44, "datetime-iec870",        4,   4, LITTLE_ENDIAN_64,      PLAIN,   V::BYTES,  F::DATE_IEC870,          O::NONE,         DATE_TIME, E::NONE},
    {45, "datetime-3-registers",   3,   3, LITTLE_ENDIAN_64,      PLAIN,   V::BYTES,  F::DATE_3_REGISTERS,     O::NONE,         DATE_TIME, E::NONE},
    {46, "datetime-ulp",           3,   4, LITTLE_ENDIAN_64,      PLAIN,   V::BYTES,  F::DATE_ULP,             O::NONE,         DATE_TIME, E::NONE},
    {47, "datetime-cm",            4,   4, LITTLE_ENDIAN_64,      PLAIN,   V::BYTES,  F::DATE_CM,              O::NONE,         DATE_TIME, E::NONE},
    {48, "datetime-msp",           3,   3, LITTLE_ENDIAN_64,      PLAIN,   V::BYTES,  F::DATE_MSP,             O::NONE,         DATE_TIME, E::NONE},
    {49, "mod10k-unsigned-2-float", 2,  2, BIG_ENDIAN_64,         SWAPPED, V::U16,    F::DECIMAL_WORDS,        O::FLOAT,        FLOAT,     E::NONE},
    {50, "mod10k-signed-2-float",  2,   2, BIG_ENDIAN_64,         SWAPPED, V::S16,    F::DECIMAL_WORDS,        O::S64_AS_FLOAT, FLOAT,     E::NONE},
    {51, "mod10k-unsigned-2",      2,   2, BIG_ENDIAN_64,         SWAPPED, V::U16,    F::DECIMAL_WORDS,        O::S64,          INTEGER,   E::NONE},
    {52, "mod10k-unsigned-4",      4,   4, BIG_ENDIAN_64,         SWAPPED, V::U16,    F::DECIMAL_WORDS,        O::S64,          INTEGER,   E::NONE},
    {53, "frequency-class",        1,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::FREQUENCY_CLASS,      O::NONE,         STRING,    E::NONE},
    {54, "version-2.3",            1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::VERSION_2_3,          O::NONE,         STRING,    E::NONE},
    {55, "version-1.1.2",          1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::VERSION_1_1_2,        O::NONE,         STRING,    E::NONE},
    {56, "version-1.1.3",          1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::VERSION_1_1_3,        O::NONE,         STRING,    E::NONE},
    {57, "decimal-text",           1,   2, BIG_ENDIAN_64,         PLAIN,   V::U32,    F::DECIMAL_TEXT,         O::NONE,         STRING,    E::NONE},
    {58, "load-lag-lead",          2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::LAG_LEAD,             O::NONE,         STRING,    E::NONE},
    {59, "load-nature",            2,   2, BIG_ENDIAN_32,         PLAIN,   V::FLOAT,  F::INDUCTIVE_CAPACITIVE, O::NONE,         STRING,    E::NONE},
    {60, "float32-swapped",        2,   2, SWAPPED_BIG_ENDIAN_32, PLAIN,   V::FLOAT,  F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    {61, "enum-text",              1, MAX, BYTES,                 PLAIN,   V::BYTES,  F::TEXT_ENUMERATION,     O::NONE,         STRING,    E::STRING},
    {62, "text",                   1, MAX, BYTES,                 PLAIN,   V::BYTES,  F::TEXT,                 O::NONE,         STRING,    E::NONE},
}};
// clang-format on

// What holds for a number above 62: gathered like a plain number, but without conversion and class.
inline constexpr LogicCodeRow UNKNOWN{63,      "",      1,       MAX_ELEMENT_REGISTERS, BIG_ENDIAN_64, PLAIN,
                                      V::NONE, F::NONE, O::NONE, ValueClass::NONE,      E::NONE};

constexpr bool RowsStandAtTheirCodes() {
    for (std::size_t i = 0; i < TABLE.size(); ++i) {
        if (TABLE[i].code != i) {
            return false;
        }
    }
    return true;
}
static_assert(RowsStandAtTheirCodes(), "row n must be logic code n");

}  // namespace LogicCodeRows

constexpr const LogicCodeRow& RowOf(LogicCodeIdentifier logicCode) {
    const auto code = static_cast<std::size_t>(logicCode);
    return code < LogicCodeRows::TABLE.size() ? LogicCodeRows::TABLE[code] : LogicCodeRows::UNKNOWN;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
