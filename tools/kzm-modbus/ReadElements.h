#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "gateway/diagnosis/Explanation.h"

// What an explanation says of the registers that were read.
namespace kzm::ModbusTool {

// What a part is called: the element path of a part of an object, otherwise its role.
std::string NameOf(const ModbusGateway::Explanation& part);

// Calls `visit` for each element of an explanation, in the order in which they were read. `path`: the names that lead
// to it, "value / feeder 3".
void ForEachElement(
    const ModbusGateway::Explanation& explanation,
    const std::function<void(const ModbusGateway::Explanation& element, const std::string& path)>& visit);

// When the oldest of the frames that were used was received, in milliseconds since 1970; 0 if none was.
std::uint64_t ReceivedOf(const ModbusGateway::Explanation& explanation);

// The bytes as received, in hexadecimal, those of several elements with ", " between them.
std::string RegistersOf(const ModbusGateway::Explanation& explanation);

// Adds "reason" (its name), "statusCode" (the number of its OPC UA status) and "received" (see ReceivedOf, as text; not
// if no frame was received) to the line of an object or of an alarm.
void AddReason(const ModbusGateway::Explanation& explanation, nlohmann::json& line);

// Adds "raw": for each element that was read, "role", "function", "address", "registers" (hexadecimal), "frame", and
// "age" (of the frame, in seconds).
void AddRaw(const ModbusGateway::Explanation& explanation, nlohmann::json& line);

}  // namespace kzm::ModbusTool
