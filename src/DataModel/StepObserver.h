#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string_view>

#include "DataModel/Reason.h"
#include "DeviceCache/Quality.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::DataModel {

class ElementData;

// The steps of a request, in the order in which a part of it takes them. In brackets, what Step holds of each beside
// its reason.
enum class StepKind : std::uint8_t {
    // What the part is, its first step.
    OBJECT,       // an object adapter [text: urn]
    GROUP,        // several object adapters, each of them a part
    ELEMENT,      // registers of the device [element]
    COMPUTATION,  // a processing chain over inputs [text: the chain's name]
    CONSTANT,     // a value that never changes [value]
    ALARM,        // a computed alarm [text: its name]
    // Of an element.
    FRAME,       // asked for [number: frame index; timestamp, now, limit]
    RECEIVED,    // from the cache [bytes, quality]
    SWAPPED,     // the words [bytes]
    PATTERN,     // compared with "not available" [text: pattern, bytes; applied: whether they match]
    MASKED,      // [bytes, mask]
    GATHERED,    // the raw record, numbers least significant byte first [bytes]
    RAW,         // the number in the raw record [number]
    EXPONENT,    // of a scaled power [number]
    SCALED,      // [number = offset + raw * factor; factor, offset]
    RANGE,       // tested [number; low, high]
    LABEL,       // looked up [number; text: the label, or the text in the registers if applied is false]
    TRANSLATED,  // a label [text: the label; value]
    // Of an object and of an alarm.
    AVAILABILITY,  // [value]
    QUALITY,       // what the quality element says [value, quality]
    VALUE,         // what the object or the alarm gets [value, quality, status]
    // Of a computation, a scaled power and an alarm.
    INPUT,       // that cannot be used [text: its name]
    PARAMETERS,  // of the chain [value]
    RESULT,      // of the chain [value, status]
    PREVIOUS,    // the record of an earlier evaluation [text: its name; value, quality, timestamp, now, limit]
    // Anywhere.
    FAILURE,  // [text: an exception's message, or empty; status]
};

// One step. Pointers and spans are valid during the call only.
struct Step {
    // StepKind tells which of these a step has. `reason`: GOOD unless this step decides that the value is missing or
    // not Good. Times in milliseconds since 1970, `limit` in milliseconds.
    StepKind kind;
    Reason reason = Reason::GOOD;
    bool applied = true;
    DeviceCache::_Quality_t quality = DeviceCache::QUALITY_UNINITIALISED;
    kz::orba::StatusCode status{};
    std::span<const std::uint8_t> bytes = {};
    std::span<const std::uint8_t> mask = {};
    std::string_view text = {};
    const nlohmann::json* value = nullptr;
    const ElementData* element = nullptr;
    double number = 0;
    double factor = 1;
    double offset = 0;
    double low = 0;
    double high = 0;
    std::uint64_t timestamp = 0;
    std::uint64_t now = 0;
    std::uint64_t limit = 0;
};

// How a part of a request ended.
struct PartOutcome {
    // As the part gave them; `value` is null if it was not asked for one.
    kz::orba::StatusCode status;
    DeviceCache::_Quality_t quality;
    const nlohmann::json* value;
};

// Is told each step of the requests of its thread, while an ObservedRequest lives. Requests do the same with and
// without it. Must not throw, and must not reach a cancellation point.
class KZM_MODBUS_EXPORT StepObserver {
public:
    virtual ~StepObserver();

    // A part begins: `role` is what it is to the part around it ("value", "quality", the name of an input, "left"),
    // `subject` the address of its AttributeAdapter, VortaObjectAdapter or ComputedAlarmOperand.
    virtual void Enter(std::string_view role, const void* subject) noexcept = 0;
    // A step of the innermost part.
    virtual void See(const Step& step) noexcept = 0;
    // The innermost part ends; null: by an exception or the thread's cancellation.
    virtual void Leave(const PartOutcome* outcome) noexcept = 0;
};

// The observer of this thread; null for none.
KZM_MODBUS_EXPORT StepObserver* GetStepObserver();

// Tells an observer the steps of all requests of this thread for as long as it lives. They nest: the inner one's
// observer takes over until it ends. Lives on the stack of the thread.
class KZM_MODBUS_EXPORT ObservedRequest {
public:
    // `observer` must outlive it.
    explicit ObservedRequest(StepObserver& observer);
    ~ObservedRequest();
    ObservedRequest(const ObservedRequest&) = delete;
    ObservedRequest& operator=(const ObservedRequest&) = delete;

private:
    StepObserver* mOuter;
};

// For whoever asks another adapter for a value: tells `observer`, which may be null, that a part begins and how it
// ends. `run` returns the part's status, having set `quality` and `value`.
template <typename Run>
kz::orba::StatusCode RunPart(StepObserver* observer, std::string_view role, const void* subject,
                             const DeviceCache::_Quality_t& quality, const nlohmann::json* value, Run run) {
    if (observer == nullptr) [[likely]] {
        return run();
    }
    observer->Enter(role, subject);
    try {
        const PartOutcome outcome{run(), quality, value};
        observer->Leave(&outcome);
        return outcome.status;
    } catch (...) {
        observer->Leave(nullptr);
        throw;
    }
}

}  // namespace kzm::ModbusDeviceModel::DataModel
