#pragma once

#include <string>
#include <vector>

#include "gateway/diagnosis/OrderModel.h"

namespace kzm::ModbusGateway {

// Why a device has an order, as phrases: "12 of 12 pairs are plausible floats with the low word first, 3 of 12 the
// other way". Counts the values of several registers that `model`, of that order, takes for probable.
std::vector<std::string> EvidenceFor(const OrderModel& model);

}  // namespace kzm::ModbusGateway
