#pragma once

#include <cstdint>

namespace kzm::DataHandler::Alarm {

// A platform whose alarm period is known only at run time.
class Engine {
public:
    static const std::uint16_t EXPECTED_ALARM_PROCESSING_TIME_SEC;
};

}  // namespace kzm::DataHandler::Alarm
