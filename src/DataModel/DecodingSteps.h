#pragma once

#include <cstdint>
#include <vector>

namespace kzm::ModbusDeviceModel::DataModel {

// The steps of decoding that all kinds of elements share; DecodingSteps.cpp has the others, and ElementData::Build,
// which takes them one after another.

// Whether there is a mask byte for every byte; an error is logged if not.
bool HasMaskFor(const std::vector<std::uint8_t>* mask, unsigned int length);

// ANDs every byte with its mask byte.
void ApplyMask(const std::uint8_t* mask, unsigned char* buffer, unsigned int length);

}  // namespace kzm::ModbusDeviceModel::DataModel
