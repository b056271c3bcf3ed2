#pragma once

#include <string>

#include "gateway/Export.h"

namespace kzm::ModbusGateway {

// How many digits of a number mean something.
enum class NumberPrecision {
    FLOAT,      // those that tell it from other 32-bit floats
    DIGITS_15,  // 15 significant ones: those of a decimal number that survive a double, and so a scaled integer's
    DOUBLE,     // those that tell it from other doubles
};

// The number nearest to the shortest decimal text that has the precision: 29 * 0.1 (2.9000000000000004) becomes 2.9 for
// 15 digits, and a 32-bit float's 0.10000000149011612 becomes 0.1 for FLOAT. A number outside the range of a float has
// 15 digits for FLOAT, too. NaN and infinity stay.
KZM_GATEWAY_EXPORT double RoundedTo(double number, NumberPrecision precision);

// The shortest text that reads back as the number in that precision: plain from 0.0001 up to 1e12 and for 0 ("230.3"),
// else with an exponent ("1e-05"); "nan", "inf" or "-inf".
KZM_GATEWAY_EXPORT std::string NumberText(double number, NumberPrecision precision);

}  // namespace kzm::ModbusGateway
