#pragma once

#include <nlohmann/json_fwd.hpp>

namespace kzm::ModbusGateway {

// The order of two finite JSON numbers: -1, 0 or 1 for less, equal or greater. Numbers that are no further apart than
// the dead band (finite, not negative) are equal. Exact for every mixture of integers and floating point.
int OrderOf(const nlohmann::json& left, const nlohmann::json& right, const nlohmann::json& deadBand);

}  // namespace kzm::ModbusGateway
