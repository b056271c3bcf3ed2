#pragma once

#include <cstdint>
#include <string>

#include "DeviceProfile/LogicCodeIdentifier.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

// How the raw value of a pair is written and compared.
enum class EnumerationType : std::uint32_t {
    UNSIGNED_INTEGER = 0,
    FLOAT = 1,
    STRING = 2,
    NONE = 3,
};

// One raw value of an element and its label. Immutable once shared; read by many threads.
struct KZM_MODBUS_EXPORT EnumerationPairData {
    // A raw value; the pair's type tells which member is set.
    union EnumValue {
        std::uint32_t mUnsigned;  // of UNSIGNED_INTEGER
        float mFloat;             // of FLOAT

        // Sets the member of that type.
        explicit EnumValue(std::uint32_t value) : mUnsigned(value) {}
        explicit EnumValue(float value) : mFloat(value) {}
    };

    // A pair of the type that suits the value.
    EnumerationPairData(std::uint32_t value, const std::string& label);
    EnumerationPairData(float value, const std::string& label);
    // Throws std::logic_error for a null text.
    EnumerationPairData(const char* value, const std::string& label);

    // True when the pair is of that type and the values are equal (floats exactly, texts byte by byte). A null text
    // equals none.
    bool matches(std::uint32_t value) const;
    bool matches(float value) const;
    bool matches(const char* value) const;

    // The type of pair that suits a logic code. NONE, with a warning in the log, for a code without labels and for
    // code 9, although its labels are looked up like those of the other enumerations (LogicCodeRow::labelType).
    static EnumerationType GetTypeFromLogicCode(LogicCodeIdentifier logicCode);

    std::string mLabel;        // the raw value's meaning
    EnumerationType mType;     // which of the following members holds the raw value
    std::string mStringValue;  // of STRING
    EnumValue mValue;          // of UNSIGNED_INTEGER and FLOAT; 0 for STRING
};

// Orders pairs by type, value and label, e.g. for a std::set. NaN has a place, too: after or before all other floats,
// by its sign.
KZM_MODBUS_EXPORT bool operator<(const EnumerationPairData& left, const EnumerationPairData& right);

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
