#pragma once

#include "kzm/Log/RootLogger.h"

// The platform's log levels by the role in which this library uses them. The platform's own names are not used, so that
// any platform's header fits. The root logger prints a line whose level is at most its own.
namespace kzm::ModbusDeviceModel::Logging {

using Level = kzm::Log::OrbaLogLevel;  // the platform's type

inline constexpr auto ERROR = static_cast<Level>(3);        // a request or a set-up step failed
inline constexpr auto WARNING = static_cast<Level>(4);      // something was replaced or ignored
inline constexpr auto INFORMATION = static_cast<Level>(6);  // why a value is missing; changes of state
inline constexpr auto TRACE = static_cast<Level>(7);        // every step of a request

}  // namespace kzm::ModbusDeviceModel::Logging
