#include "gateway/diagnosis/DecidingReason.h"

#include <algorithm>

#include "Support/Status.h"

namespace kzm::ModbusGateway {

using namespace ModbusDeviceModel::DataModel;
using Kind = Explanation::Kind;
using nlohmann::json;

namespace {

// A group has no value of its own, and null is the constant of an operand that an alarm's chain does not use.
bool IsMissing(const Explanation& part) {
    const bool mayBeNull =
        part.kind == Kind::GROUP || (part.kind == Kind::CONSTANT && part.steps.front().reason == Reason::GOOD);
    return part.status != ModbusDeviceModel::Status::SUCCESS || (part.value.is_null() && !mayBeNull);
}

// A group has no quality of its own either.
bool IsGood(const Explanation& part) {
    if (part.kind == Kind::GROUP) {
        return std::ranges::all_of(part.parts, [](const auto& one) { return one.why.reason == Reason::GOOD; });
    }
    return !IsMissing(part) && part.quality == ModbusDeviceModel::DeviceCache::QUALITY_GOOD;
}

bool Prevents(Reason reason) {
    return !RowOf(reason).hasValue;
}

// The part that is an input of the name.
const Explanation* FindPart(const Explanation& part, const std::string& role) {
    const auto found = std::ranges::find(part.parts, role, &Explanation::role);
    return found == part.parts.end() ? nullptr : &*found;
}

void AddFrame(const Explanation& part, Why& why) {
    if (part.registers) {
        why.frame = part.registers->frame;
        why.frameIndex = part.registers->frameIndex;
        why.age = part.registers->age;
        why.limit = part.registers->limit;
        why.exception = part.registers->exception;
    }
}

// The input's own reason, with what it is the input of.
void AddInput(const Explanation& part, const std::string& input, Why& why) {
    const Explanation* const found = FindPart(part, input);
    const Reason reason = why.reason;
    if (found != nullptr && found->why.reason != Reason::GOOD) {
        why = found->why;
        why.cause = why.cause == Reason::GOOD ? why.reason : why.cause;
    }
    why.reason = reason;
    why.input = input + (why.input.empty() ? "" : " / " + why.input);
}

// What is wrong with the inputs of a chain without result, as far as they tell.
std::string WhyNoResult(const Explanation& part) {
    const auto hasNoDivisor = [](const Explanation::Step& step) {
        return step.kind == StepKind::PARAMETERS && step.value.is_object() && step.value.value("divisor", json(1)) == 0;
    };
    if (std::ranges::any_of(part.steps, hasNoDivisor)) {
        return "division by zero";
    }
    const bool doesNotFit = part.status == ModbusDeviceModel::Status::OUT_OF_RANGE;
    return doesNotFit ? "too large, or an input of the wrong kind" : "";
}

Why WhyOf(const Explanation& part, const Explanation::Step& step) {
    Why why{.reason = step.reason};
    why.status = part.status;
    AddFrame(part, why);
    if (step.kind == StepKind::INPUT) {
        AddInput(part, step.text, why);
        return why;
    }
    why.text = step.kind == StepKind::QUALITY && step.value.is_string() ? step.value.get<std::string>() : step.text;
    if (step.kind == StepKind::RESULT && step.reason == Reason::CANNOT_COMPUTE) {
        why.text = WhyNoResult(part);
    } else if (step.kind == StepKind::RANGE || step.kind == StepKind::LABEL || step.kind == StepKind::SCALED) {
        why.number = step.number;
        why.low = step.low;
        why.high = step.high;
    } else if (step.kind == StepKind::PREVIOUS) {
        why.limit = static_cast<std::uint64_t>(step.high);
        why.age = step.reason == Reason::NEVER_RECEIVED ? std::nullopt
                                                        : std::optional(static_cast<std::int64_t>(step.number));
    }
    return why;
}

}  // namespace

Why DecidingReason(const Explanation& part) {
    if (IsGood(part)) {
        return {};
    }
    const bool missing = IsMissing(part);
    const auto decides = [&](Reason reason) { return reason != Reason::GOOD && (!missing || Prevents(reason)); };
    const auto step = std::ranges::find_if(part.steps, decides, &Explanation::Step::reason);
    if (step != part.steps.end()) {
        return WhyOf(part, *step);
    }
    const auto isCause = [&](const Explanation& one) { return one.role != "timestamp" && decides(one.why.reason); };
    auto cause = std::ranges::find_if(part.parts, isCause);
    if (cause == part.parts.end()) {
        cause = std::ranges::find_if(part.parts, [](const auto& one) { return one.why.reason != Reason::GOOD; });
    }
    if (cause != part.parts.end()) {
        return cause->why;
    }
    Why why{.reason = Reason::INTERNAL};
    why.status = part.status;
    return why;
}

}  // namespace kzm::ModbusGateway
