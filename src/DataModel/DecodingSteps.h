#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

struct myData;

// The steps of ElementData::Build between the word swap and the conversion, in their order, each of which can be called
// alone.

// Whether there is a "not available" pattern with as many bytes.
bool HasPatternFor(const std::string* pattern, unsigned int length);

// Whether all bytes are those of the pattern, which has as many. Throws std::invalid_argument for characters that are
// not hexadecimal; those behind the first byte that differs are not looked at.
bool MatchesPattern(const std::string& pattern, const unsigned char* buffer, unsigned int length);

// Whether there is a mask byte for every byte; logged where there is not.
bool HasMaskFor(const std::vector<std::uint8_t>* mask, unsigned int length);

// ANDs every byte with its mask byte.
void ApplyMask(const std::uint8_t* mask, unsigned char* buffer, unsigned int length);

// Puts the bytes, at most 255, into the raw record.
void Gather(DeviceProfile::Gathering gathering, const std::uint8_t* mask, unsigned char* buffer, unsigned int length,
            myData& data);

}  // namespace kzm::ModbusDeviceModel::DataModel
