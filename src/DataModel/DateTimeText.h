#pragma once

#include <string>

namespace kzm::ModbusDeviceModel::DataModel {

// Date and time of the layouts that ElementData decodes, eight bytes in wire order, as ISO 8601 text in UTC with
// "+00:00". The fraction of the second is ".000", or, in CM and ULP, the milliseconds without leading zeros. Fields out
// of their range print as they are.
std::string TextOfIec870(const char* bytes);
std::string TextOf3Registers(const char* bytes);
std::string TextOfMsp(const char* bytes);
std::string TextOfCm(const char* bytes);
std::string TextOfUlp(const char* bytes);

}  // namespace kzm::ModbusDeviceModel::DataModel
