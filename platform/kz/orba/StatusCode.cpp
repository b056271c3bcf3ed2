#include "kz/orba/StatusCode.h"

namespace kz::orba {

namespace {

const char* TextOf(StatusCode status) {
    switch (status) {
        case StatusCode::OK:
            return "ok";
        case StatusCode::INVALID_ARGUMENT:
            return "invalid argument";
        case StatusCode::ALREADY_SET:
            return "already set";
        case StatusCode::OUT_OF_RANGE:
            return "out of range";
        case StatusCode::NOT_AVAILABLE:
            return "value not available";
        case StatusCode::NOT_FOUND:
            return "not found";
        case StatusCode::NOT_SUPPORTED:
            return "not supported";
        case StatusCode::MEASUREMENT_NOT_AVAILABLE:
            return "measurement not available";
        case StatusCode::ADDRESS_OVERFLOW:
            return "register address past 65535";
    }
    return nullptr;
}

}  // namespace

std::string ConvertStatusCodeToString(StatusCode status) {
    const std::string number = std::to_string(static_cast<std::int32_t>(status));
    const char* text = TextOf(status);
    return text ? std::string(text) + " (" + number + ")" : "status " + number;
}

}  // namespace kz::orba
