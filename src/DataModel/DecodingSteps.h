#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "DataModel/Observation.h"

namespace kzm::ModbusDeviceModel::DataModel {

struct myData;

// The decoding of an element, for somebody who watches it (Watched) and for nobody (Unwatched). DecodingSteps.cpp has
// the steps up to the gathered record, LogicConversion.cpp the others.
template <typename Watch>
struct Decoding {
    // ElementData::Build.
    static bool Build(Watch watch, ElementData& element, unsigned char* buffer, unsigned int length,
                      bool deviceBigEndian, bool& invalid, nlohmann::json& value);
    // ElementData::ApplyLogicConversion.
    static bool Convert(Watch watch, const ElementData& element, const myData& data, bool& invalid,
                        nlohmann::json& value);

private:
    static bool FindMask(Watch watch, const ElementData& element, unsigned int length);
    static bool CanCompare(Watch watch, const ElementData& element, unsigned int length);
    static bool MatchPattern(Watch watch, const ElementData& element, const unsigned char* buffer, unsigned int length);
};

// Steps that all kinds of elements share.

// Whether there is a mask byte for every byte; an error is logged if not.
bool HasMaskFor(const std::vector<std::uint8_t>* mask, unsigned int length);

// ANDs every byte with its mask byte.
void ApplyMask(const std::uint8_t* mask, unsigned char* buffer, unsigned int length);

}  // namespace kzm::ModbusDeviceModel::DataModel
