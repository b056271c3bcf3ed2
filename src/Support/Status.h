#pragma once

#include "kz/orba/StatusCode.h"

// The platform's status numbers by the role in which this library returns them. The platform's own names are not used,
// so that any platform's header fits.
namespace kzm::ModbusDeviceModel::Status {

using kz::orba::StatusCode;

inline constexpr auto SUCCESS = static_cast<StatusCode>(0);
inline constexpr auto INVALID_ARGUMENT = static_cast<StatusCode>(1);
inline constexpr auto ALREADY_SET = static_cast<StatusCode>(20);
inline constexpr auto OUT_OF_RANGE = static_cast<StatusCode>(28);
inline constexpr auto NOT_AVAILABLE = static_cast<StatusCode>(42);
inline constexpr auto NOT_FOUND = static_cast<StatusCode>(44);
inline constexpr auto NOT_SUPPORTED = static_cast<StatusCode>(60);
inline constexpr auto MEASUREMENT_NOT_AVAILABLE = static_cast<StatusCode>(63);
inline constexpr auto ADDRESS_OVERFLOW = static_cast<StatusCode>(64);

}  // namespace kzm::ModbusDeviceModel::Status
