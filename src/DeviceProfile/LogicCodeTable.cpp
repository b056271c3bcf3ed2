#include "DeviceProfile/LogicCodeTable.h"

#include <iterator>

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

using enum Gathering;
using enum ValueClass;
using V = RawView;
using F = Family;
using O = Output;
using E = EnumerationType;

constexpr std::uint8_t MAX = MAX_ELEMENT_REGISTERS;
constexpr bool SWAPPED = true;
constexpr bool PLAIN = false;
constexpr E LABEL_U = E::UNSIGNED_INTEGER;

// clang-format off
constexpr LogicCodeRow TABLE[] = {
    { 0, "enum16",                 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    { 1, "state16",                1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::SHIFTED_ENUMERATION,  O::NONE,         STRING,    LABEL_U},
    { 2, "uint16",                 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::U16,          INTEGER,   E::NONE},
    { 3, "int16-to-int32",         1,   1, BIG_ENDIAN_64,         PLAIN,   V::S16,    F::NUMBER,               O::S32,          INTEGER,   E::NONE},
    { 4, "uint16-to-int32",        1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::S32,          INTEGER,   E::NONE},
    { 5, "uint16-to-uint32",       1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::U32,          INTEGER,   E::NONE},
    { 6, "int16-to-float",         1,   1, BIG_ENDIAN_64,         PLAIN,   V::S16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 7, "uint16-to-float",        1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 8, "uint16-to-float-scaled", 1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::NUMBER,               O::FLOAT,        FLOAT,     E::NONE},
    { 9, "enum16-unshifted",       1,   1, BIG_ENDIAN_64,         PLAIN,   V::U16,    F::ENUMERATION,          O::NONE,         STRING,    LABEL_U},
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
};
// clang-format on

// Stands for every code without a row: gathered like a number, but without a conversion.
constexpr LogicCodeRow UNKNOWN{std::size(TABLE), "",     1, MAX, BIG_ENDIAN_64, PLAIN, V::NONE, F::NONE, O::NONE,
                               ValueClass::NONE, E::NONE};

constexpr bool RowsStandAtTheirCodes() {
    for (std::size_t i = 0; i < std::size(TABLE); ++i) {
        if (TABLE[i].code != i) {
            return false;
        }
    }
    return true;
}
static_assert(RowsStandAtTheirCodes(), "row n must be logic code n");

}  // namespace

std::span<const LogicCodeRow> LogicCodeRows() {
    return TABLE;
}

const LogicCodeRow& RowOf(LogicCodeIdentifier logicCode) {
    const auto code = static_cast<std::size_t>(logicCode);
    return code < std::size(TABLE) ? TABLE[code] : UNKNOWN;
}

Scaling ScalingOf(Family family) {
    switch (family) {
        case F::NUMBER:
        case F::DOUBLE:
        case F::BOOLEAN:
        case F::DECIMAL_WORDS:
        case F::POWER_FACTOR:
            return Scaling::FACTOR_AND_OFFSET;
        case F::SCALED_POWER:
            return Scaling::FACTOR;
        case F::NONE:
        case F::ENUMERATION:
        case F::SHIFTED_ENUMERATION:
        case F::TEXT_ENUMERATION:
        case F::DECIMAL_TEXT:
        case F::QUADRANT:
        case F::LAG_LEAD:
        case F::INDUCTIVE_CAPACITIVE:
        case F::FREQUENCY_CLASS:
        case F::TEXT:
        case F::DATE_IEC870:
        case F::DATE_3_REGISTERS:
        case F::DATE_ULP:
        case F::DATE_CM:
        case F::DATE_MSP:
        case F::VERSION_2_3:
        case F::VERSION_1_1_2:
        case F::VERSION_1_1_3:
            break;
    }
    return Scaling::NONE;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
