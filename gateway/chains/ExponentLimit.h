#pragma once

namespace kzm::ModbusGateway {

// A decimal exponent that a device gives must be within -MAX_EXPONENT and MAX_EXPONENT. Larger powers of ten are not
// exact as double, and only a marker for a missing scale factor (-32768) or a fault looks like that.
inline constexpr int MAX_EXPONENT = 22;

}  // namespace kzm::ModbusGateway
