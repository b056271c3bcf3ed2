#pragma once

#include <cstdint>

namespace kzm::DataHandler::Alarm {

// What others need to know of the gateway's alarm engine.
class Engine {
public:
    // How often the engine evaluates every alarm, in seconds.
    static constexpr std::uint16_t EXPECTED_ALARM_PROCESSING_TIME_SEC = 30;
};

}  // namespace kzm::DataHandler::Alarm
