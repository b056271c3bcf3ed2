#pragma once

#include <pthread.h>

#include <exception>
#include <string>

#include "Support/LogLevel.h"
#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusGateway {

// Prints a line of the gateway through the process's logger, marked as the library's lines are. `makeText` gives its
// text, and is called only when the level is on. A line that cannot be made, for lack of memory, is lost.
template <typename MakeText>
void LogLine(ModbusDeviceModel::Logging::Level level, const char* module, const MakeText& makeText) try {
    auto& logger = Log::RootLogger::GetInstance();
    if (logger.GetLevel() >= level) {
        const std::string text = makeText();
        logger.Print(level, "[%lu][%s] %s", static_cast<unsigned long>(pthread_self()), module, text.c_str());
    }
} catch (const std::exception&) {
}

}  // namespace kzm::ModbusGateway
