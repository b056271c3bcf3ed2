#pragma once

#include <cxxabi.h>
#include <pthread.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Support/LogLevel.h"
#include "kz/orba/StatusCode.h"

// Log lines of the library. A line's arguments are evaluated only when the root logger's level admits the line. A line
// that cannot be built or printed, for lack of memory or because the logger failed, is lost; the request goes on. Only
// a thread's cancellation passes. Each source file that logs defines LOG_MODULE, the second field of its lines.
namespace kzm::ModbusDeviceModel::Logging {

// Compact JSON for a log line. Bytes that are not UTF-8 are replaced, so that a line never throws because of its
// content.
inline std::string Text(const nlohmann::json& value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

inline std::string Text(kz::orba::StatusCode status) {
    return kz::orba::ConvertStatusCodeToString(status);
}

}  // namespace kzm::ModbusDeviceModel::Logging

#define KZM_LOG_LINE(level, prefix, format, ...)                                                        \
    do {                                                                                                \
        try {                                                                                           \
            auto& kzmRootLogger = kzm::Log::RootLogger::GetInstance();                                  \
            if (kzmRootLogger.GetLevel() >= (level)) {                                                  \
                kzmRootLogger.Print((level), prefix format, static_cast<unsigned long>(pthread_self()), \
                                    LOG_MODULE __VA_OPT__(, ) __VA_ARGS__);                             \
            }                                                                                           \
        } catch (abi::__forced_unwind&) {                                                               \
            throw;                                                                                      \
        } catch (...) {                                                                                 \
        }                                                                                               \
    } while (false)

// A line whose level is chosen at run time.
#define KZM_LOG_AT(level, format, ...) KZM_LOG_LINE(level, "[%lu][%s] ", format __VA_OPT__(, ) __VA_ARGS__)
#define KZM_LOG(level, format, ...) \
    KZM_LOG_LINE(kzm::ModbusDeviceModel::Logging::level, "[%lu][%s] ", format __VA_OPT__(, ) __VA_ARGS__)
#define KZM_LOG_TRACE(format, ...) \
    KZM_LOG_LINE(kzm::ModbusDeviceModel::Logging::TRACE, "[%lu][%s][trace] ", format __VA_OPT__(, ) __VA_ARGS__)
