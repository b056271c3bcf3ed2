#pragma once

#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusGateway {

// Why a part whose steps, parts and outcome are known is not Good.
Why DecidingReason(const Explanation& part);

}  // namespace kzm::ModbusGateway
