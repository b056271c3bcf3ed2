#pragma once

#include "kz/orba/StatusCode.h"

// The platform's status numbers by the role in which this library returns them and expects them from chains and
// adapters of others. The names that a platform gives to the numbers do not matter.
namespace kzm::ModbusDeviceModel::Status {

using kz::orba::StatusCode;

// Done; outputs are set.
inline constexpr auto SUCCESS = static_cast<StatusCode>(0);
// An argument that cannot be used: no cache, no frame, no adapter or chain.
inline constexpr auto INVALID_ARGUMENT = static_cast<StatusCode>(1);
// The role has an adapter already, which it keeps.
inline constexpr auto ALREADY_SET = static_cast<StatusCode>(20);
// Outside the limits: a full frame, an input that a chain does not take, an adapter or structure that does not fit.
inline constexpr auto OUT_OF_RANGE = static_cast<StatusCode>(28);
// No value: its frame is out of date or was never read, or what was read cannot be decoded.
inline constexpr auto NOT_AVAILABLE = static_cast<StatusCode>(42);
// No such object, element, logic code or label.
inline constexpr auto NOT_FOUND = static_cast<StatusCode>(44);
// Not an operation of this kind of adapter.
inline constexpr auto NOT_SUPPORTED = static_cast<StatusCode>(60);
// The device says itself that it does not have the measurement.
inline constexpr auto MEASUREMENT_NOT_AVAILABLE = static_cast<StatusCode>(63);
// Registers past address 65535.
inline constexpr auto ADDRESS_OVERFLOW = static_cast<StatusCode>(64);

}  // namespace kzm::ModbusDeviceModel::Status
