#include "Support/Status.h"
#include "gateway/diagnosis/Explanation.h"
#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"
#include "gateway/modbus/ExceptionName.h"

namespace kzm::ModbusGateway {

using namespace ModbusDeviceModel::DataModel;

namespace {

std::string SecondsOf(std::int64_t milliseconds) {
    return NumberText(static_cast<double>(milliseconds) / 1000, NumberPrecision::DIGITS_15) + " s";
}

std::string NumberIn(const Why& why) {
    return NumberText(why.number.value_or(0), NumberPrecision::DIGITS_15);
}

// The frame, or the previous value of an alarm.
std::string SourceOf(const Why& why) {
    return why.frameIndex ? "frame " + why.frame : "the previous value " + Quoted(why.text);
}

// What the device answered last, if that was an exception.
std::string ExceptionIn(const Why& why) {
    return why.exception == 0 ? "" : "; the device answered with " + ExceptionName(why.exception);
}

std::string AgeIn(const Why& why) {
    const std::string limit =
        " (" + SecondsOf(why.age.value_or(0)) + ", limit " + SecondsOf(static_cast<std::int64_t>(why.limit)) + ")";
    return SourceOf(why) + " is out of date" + limit + ExceptionIn(why);
}

std::string LastValue(const Why& why) {
    const std::string answer =
        why.exception == 0 ? "is marked Bad" : "was answered with " + ExceptionName(why.exception);
    return SourceOf(why) + " " + answer + "; the value is the last one received";
}

std::string NeverReceived(const Why& why) {
    return SourceOf(why) + " was never received" + ExceptionIn(why);
}

std::string RangeIn(const Why& why) {
    const std::string limits =
        NumberText(why.low, NumberPrecision::DIGITS_15) + " to " + NumberText(why.high, NumberPrecision::DIGITS_15);
    return NumberIn(why) + " does not fit the type" + (why.low < why.high ? " (" + limits + ")" : "");
}

std::string Label(const Why& why) {
    return (why.text.empty() ? NumberIn(why) : Quoted(why.text)) + " has no label in the enumeration";
}

// The meaning, and what is known beyond it.
std::string MeaningOf(const Why& why) {
    std::string text(RowOf(why.reason).meaning);
    const std::string& detail = why.text.empty() ? why.input : why.text;
    return detail.empty() ? text : text + ": " + detail;
}

std::string NoResult(const Why& why) {
    const std::string detail = why.input.empty() ? why.text : "input " + why.input + " cannot be used";
    return detail.empty() ? "the computation has no result" : "no result: " + detail;
}

std::string InputMissing(const Why& why) {
    Why own = why;
    own.reason = why.cause;
    own.input.clear();
    return "input " + why.input + (why.cause == Reason::GOOD ? " has no value" : ": " + own.Text());
}

}  // namespace

std::string Why::Text() const {
    switch (reason) {
        case Reason::GOOD:
            return "good";
        case Reason::QUESTIONABLE:
            return SourceOf(*this) + " is marked Questionable";
        case Reason::NEVER_RECEIVED:
            return frameIndex ? NeverReceived(*this) : "there is no previous value " + Quoted(text) + " yet";
        case Reason::OUT_OF_DATE:
            return AgeIn(*this);
        case Reason::FUTURE_TIMESTAMP:
            return SourceOf(*this) + " has a timestamp in the future";
        case Reason::LAST_VALUE:
            return LastValue(*this);
        case Reason::NO_DATA:
            return SourceOf(*this) + " does not have the registers";
        case Reason::NOT_AVAILABLE:
            return "not available: the device sent " + text;
        case Reason::SWITCHED_OFF:
            return "not available by its flag";
        case Reason::DEVICE_SAYS_BAD:
            return "the device says " + Quoted(text);
        case Reason::OUT_OF_RANGE:
            return RangeIn(*this);
        case Reason::UNKNOWN_LABEL:
            return Label(*this);
        case Reason::NO_TRANSLATION:
            return "the label " + Quoted(text) + " has no translation";
        case Reason::INPUT_MISSING:
            return InputMissing(*this);
        case Reason::CANNOT_COMPUTE:
            return NoResult(*this);
        case Reason::NOT_FINITE:
        case Reason::MISCONFIGURED:
        case Reason::IMPLAUSIBLE:
        case Reason::NO_MEMORY:
            return MeaningOf(*this);
        case Reason::INTERNAL:
            return "status " + kz::orba::ConvertStatusCodeToString(status) + (text.empty() ? "" : ": " + text);
    }
    return "";
}

}  // namespace kzm::ModbusGateway
