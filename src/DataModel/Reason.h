#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kzm::ModbusDeviceModel::DataModel {

// Why a value is missing, Bad or Questionable.
enum class Reason : std::uint8_t {
    GOOD,
    QUESTIONABLE,
    NEVER_RECEIVED,
    OUT_OF_DATE,
    FUTURE_TIMESTAMP,
    LAST_VALUE,
    NO_DATA,
    NOT_AVAILABLE,
    SWITCHED_OFF,
    DEVICE_SAYS_BAD,
    NOT_FINITE,
    OUT_OF_RANGE,
    UNKNOWN_LABEL,
    NO_TRANSLATION,
    MISCONFIGURED,
    INPUT_MISSING,
    CANNOT_COMPUTE,
    IMPLAUSIBLE,
    NO_MEMORY,
    INTERNAL,
};

// What is known of one reason.
struct ReasonRow {
    Reason reason;                 // the row's number
    std::string_view name;         // for programs
    std::string_view meaning;      // for people
    std::string_view opcUaStatus;  // the nearest status of OPC UA
    std::uint32_t opcUaCode;       // its number
    bool hasValue;                 // there is a value, but it is not Good
};

// clang-format off
// All reasons; row n is reason n.
inline constexpr std::array<ReasonRow, 20> REASONS{{
    {Reason::GOOD, "good", "the value is what the device said a moment ago", "Good", 0x00000000, true},
    {Reason::QUESTIONABLE, "questionable", "the cache or the capture marks the frame as questionable", "Uncertain", 0x40000000, true},
    {Reason::NEVER_RECEIVED, "never-received", "the frame has not been received yet", "BadWaitingForInitialData", 0x80320000, false},
    {Reason::OUT_OF_DATE, "out-of-date", "the last answer for the frame is older than the limit", "BadNoCommunication", 0x80310000, false},
    {Reason::FUTURE_TIMESTAMP, "future-timestamp", "the frame has a timestamp in the future", "BadInvalidTimestamp", 0x80230000, false},
    {Reason::LAST_VALUE, "last-value", "the device answered with an exception or the line failed; the value is the last one received", "UncertainLastUsableValue", 0x40900000, true},
    {Reason::NO_DATA, "no-data", "the cache gave no bytes, or fewer than the element needs", "BadNoDataAvailable", 0x80b10000, false},
    {Reason::NOT_AVAILABLE, "not-available", "the registers hold the device's \"not available\" pattern", "BadSensorFailure", 0x808c0000, false},
    {Reason::SWITCHED_OFF, "switched-off", "the object's availability flag is false", "BadOutOfService", 0x808d0000, false},
    {Reason::DEVICE_SAYS_BAD, "device-says-bad", "the object's quality element says so", "BadDeviceFailure", 0x808b0000, true},
    {Reason::NOT_FINITE, "not-finite", "the registers hold NaN or an infinity", "BadDecodingError", 0x80070000, false},
    {Reason::OUT_OF_RANGE, "out-of-range", "the number, scaled, does not fit the type", "BadOutOfRange", 0x803c0000, false},
    {Reason::UNKNOWN_LABEL, "unknown-label", "the number has no label in the enumeration", "BadDataEncodingInvalid", 0x80380000, false},
    {Reason::NO_TRANSLATION, "no-translation", "the label has no translation", "BadConfigurationError", 0x80890000, false},
    {Reason::MISCONFIGURED, "misconfigured", "mask, pattern, adapter or input is missing or does not fit", "BadConfigurationError", 0x80890000, false},
    {Reason::INPUT_MISSING, "input-missing", "an input of the computation has no value", "BadDataUnavailable", 0x809e0000, false},
    {Reason::CANNOT_COMPUTE, "cannot-compute", "the computation has no result: division by zero, overflow, wrong kind of input", "BadInvalidArgument", 0x80ab0000, false},
    {Reason::IMPLAUSIBLE, "implausible", "the value is outside the limits that the profile calls plausible, or a counter ran backwards; it is shown", "UncertainEngineeringUnitsExceeded", 0x40940000, true},
    {Reason::NO_MEMORY, "no-memory", "memory ran short", "BadOutOfMemory", 0x80030000, false},
    {Reason::INTERNAL, "internal", "anything else", "BadInternalError", 0x80020000, false},
}};
// clang-format on

// The row of a reason.
constexpr const ReasonRow& RowOf(Reason reason) {
    return REASONS[static_cast<std::size_t>(reason)];
}

static_assert([] {
    for (std::size_t i = 0; i < REASONS.size(); ++i) {
        if (static_cast<std::size_t>(REASONS[i].reason) != i) {
            return false;
        }
    }
    return REASONS.back().reason == Reason::INTERNAL;
}());

}  // namespace kzm::ModbusDeviceModel::DataModel
