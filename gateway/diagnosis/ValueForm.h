#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kzm::ModbusGateway {

// Which register of a value comes first.
enum class WordOrder : std::uint8_t { BIG, LITTLE, NONE };

// What registers may hold, as far as a guess tells it apart by form. Whether a whole number is signed is told later.
enum class ValueForm : std::uint8_t {
    INTEGER16,
    INTEGER32,
    INTEGER64,
    FLOAT32,
    FLOAT64,
    UNIX32,
    UNIX64,
    UNIX64_MS,
    TEXT,
    TEXT_SWAPPED,
    TEXT_LOW_BYTES,   // one character per register, in the low byte
    TEXT_HIGH_BYTES,  // one character per register, in the high byte
    DATE,             // in fields
};

struct ValueFormRow {
    ValueForm form;
    const char* unsignedType;  // as profiles name it
    const char* signedType;    // the same for what has no sign
    std::uint8_t count;        // registers; 0: several counts
    double share;              // of the values of a device, before its registers are looked at
};

// clang-format off
inline constexpr std::array VALUE_FORMS{
    ValueFormRow{ValueForm::INTEGER16,       "uint16",           "int16",            1, 0.42},
    ValueFormRow{ValueForm::INTEGER32,       "uint32",           "int32",            2, 0.22},
    ValueFormRow{ValueForm::INTEGER64,       "uint64",           "int64",            4, 0.03},
    ValueFormRow{ValueForm::FLOAT32,         "float32",          "float32",          2, 0.22},
    ValueFormRow{ValueForm::FLOAT64,         "float64",          "float64",          4, 0.01},
    ValueFormRow{ValueForm::UNIX32,          "datetime-unix32",  "datetime-unix32",  2, 0.003},
    ValueFormRow{ValueForm::UNIX64,          "datetime-unix64",  "datetime-unix64",  4, 0.001},
    ValueFormRow{ValueForm::UNIX64_MS,       "datetime-unix64-ms", "datetime-unix64-ms", 4, 0.001},
    ValueFormRow{ValueForm::TEXT,            "text",             "text",             0, 0.03},
    ValueFormRow{ValueForm::TEXT_SWAPPED,    "text-swapped",     "text-swapped",     0, 0.002},
    ValueFormRow{ValueForm::TEXT_LOW_BYTES,  "text-masked",      "text-masked",      0, 0.005},
    ValueFormRow{ValueForm::TEXT_HIGH_BYTES, "text-masked",      "text-masked",      0, 0.002},
    ValueFormRow{ValueForm::DATE,            "datetime",         "datetime",         0, 0.01},
};
// clang-format on

constexpr const ValueFormRow& RowOf(ValueForm form) {
    return VALUE_FORMS[static_cast<std::size_t>(form)];
}

static_assert([] {
    for (std::size_t i = 0; i < VALUE_FORMS.size(); ++i) {
        if (VALUE_FORMS[i].form != static_cast<ValueForm>(i)) {
            return false;
        }
    }
    return true;
}());

constexpr bool IsInteger(ValueForm form) {
    return form <= ValueForm::INTEGER64;
}
constexpr bool IsFloat(ValueForm form) {
    return form == ValueForm::FLOAT32 || form == ValueForm::FLOAT64;
}
constexpr bool IsUnixTime(ValueForm form) {
    return form >= ValueForm::UNIX32 && form <= ValueForm::UNIX64_MS;
}

// The bits of up to four registers, the most significant first.
std::uint64_t BitsOf(std::span<const std::uint16_t> registers, WordOrder order);

// Whether the bits say "no value", as devices usually do it: only ones, or only the highest bit, or all but the highest
// of a whole number; not a number.
bool IsInvalid(ValueForm form, std::uint64_t bits);

}  // namespace kzm::ModbusGateway
