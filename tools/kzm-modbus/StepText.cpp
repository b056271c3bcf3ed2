#include "StepText.h"

#include <algorithm>
#include <cmath>

#include "DeviceProfile/LogicCodeTable.h"
#include "ObjectTable.h"
#include "Text.h"
#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"
#include "gateway/model/ElementPrecision.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::Reason;
using ModbusDeviceModel::DataModel::StepKind;
using Step = Explanation::Step;
using Kind = Explanation::Kind;

namespace {

std::string NumberText(double number) {
    return ModbusGateway::NumberText(number, NumberPrecision::DIGITS_15);
}

std::string NumberOf(const Explanation& part, double number, double factor, double offset) {
    const auto code = static_cast<LogicCodeIdentifier>(part.registers ? part.registers->logicCode : 0);
    return ModbusGateway::NumberText(number, PrecisionOf(code, factor, static_cast<float>(offset)));
}

// The last step of that kind; null if there is none.
const Step* Find(const Explanation& part, StepKind kind) {
    const auto found =
        std::find_if(part.steps.rbegin(), part.steps.rend(), [kind](const Step& step) { return step.kind == kind; });
    return found == part.steps.rend() ? nullptr : &*found;
}

StepText Pattern(const Step& step) {
    if (step.reason == Reason::MISCONFIGURED) {
        return {"pattern", "the \"not available\" pattern " + step.text + " does not fit the registers"};
    }
    return {"pattern", "\"not available\" is " + step.text + (step.applied ? ": that is what they hold" : ""),
            step.applied};
}

StepText Mask(const Step& step) {
    if (step.reason != Reason::GOOD) {
        return {"mask", "missing or too short"};
    }
    const bool isWhole = std::ranges::count(step.mask, 0xFF) == std::ssize(step.mask);
    return {"mask", HexOf(step.mask) + " leaves " + HexOf(step.bytes), !isWhole};
}

// offset + raw * scale, with the numbers put in.
StepText Scale(const Explanation& part, const Step& step) {
    const Step* raw = Find(part, StepKind::RAW);
    const Step* exponent = Find(part, StepKind::EXPONENT);
    const std::string sum = step.offset == 0 ? "" : NumberText(step.offset) + " + ";
    const std::string power = exponent ? " × 10^" + NumberText(exponent->number) : "";
    return {"scale", sum + (raw ? NumberOf(part, raw->number, 1, 0) : "") + " × " + NumberText(step.factor) + power +
                         " = " + NumberOf(part, step.number, step.factor, step.offset)};
}

StepText Range(const Step& step) {
    if (!std::isfinite(step.number)) {
        return {"range", "the registers hold " + NumberText(step.number) + ", which is no number"};
    }
    return {"range",
            NumberText(step.number) + " does not fit " + NumberText(step.low) + " to " + NumberText(step.high)};
}

StepText Label(const Step& step) {
    const std::string key = step.applied || step.text.empty() ? NumberText(step.number) : Quoted(step.text);
    return {"label", key + (step.applied ? " means " + Quoted(step.text) : " has no label in the enumeration")};
}

StepText Translation(const Step& step) {
    if (step.reason != Reason::GOOD) {
        return {"translation", step.text.empty() ? "not a label" : Quoted(step.text) + " has no translation"};
    }
    const bool changes = !(step.value.is_string() && step.value.get_ref<const std::string&>() == step.text);
    return {"translation", Quoted(step.text) + " becomes " + TextOf(step.value), changes};
}

// What is wrong with the inputs of a computation without result, as far as they tell.
std::string WhyNoResult(const Explanation& part) {
    const Step* parameters = Find(part, StepKind::PARAMETERS);
    const auto isZero = [&](const char* name) {
        return parameters && parameters->value.is_object() && parameters->value.contains(name) &&
               parameters->value[name] == 0;
    };
    return isZero("divisor") ? "no result: division by zero" : "no result";
}

std::string ResultText(const nlohmann::json& value) {
    return value.is_number_float() ? NumberText(value.get<double>()) : TextOf(value);
}

std::string ParametersText(const nlohmann::json& parameters) {
    std::string text;
    for (const auto& [name, value] : parameters.items()) {
        text += (text.empty() ? "" : ", ") + name + " = " + ResultText(value);
    }
    return text;
}

StepText Previous(const Step& step) {
    if (step.value.is_null()) {
        return {"previous", "no earlier value of " + Quoted(step.text)};
    }
    return {"previous", TextOf(step.value) + ", " + AgeText(static_cast<std::int64_t>(step.number)) + " old (limit " +
                            AgeText(static_cast<std::int64_t>(step.high)) + ")"};
}

StepText Availability(const Step& step) {
    return {"available", step.reason == Reason::SWITCHED_OFF ? "no, says the flag" : "the flag is not true or false"};
}

std::string FailureText(const Step& step) {
    const std::string meaning(RowOf(step.reason).meaning);
    return step.text.empty() ? meaning : meaning + ": " + step.text;
}

}  // namespace

StepText TextOf(const Explanation& part, const Step& step) {
    switch (step.kind) {
        case StepKind::RECEIVED:
            return {"received", step.bytes.empty() ? "nothing" : HexOf(step.bytes) + ", quality " + TextOf(step.value),
                    true, false};
        case StepKind::SWAPPED:
            return {"word order", HexOf(step.bytes) + ", low word first"};
        case StepKind::PATTERN:
            return Pattern(step);
        case StepKind::MASKED:
            return Mask(step);
        case StepKind::GATHERED:
            return {"gathered", HexOf(step.bytes) + ", low byte first", false, false};
        case StepKind::RAW:
            return {"number", NumberOf(part, step.number, 1, 0), true, false};
        case StepKind::EXPONENT:
            return {"exponent", NumberText(step.number)};
        case StepKind::SCALED:
            return Scale(part, step);
        case StepKind::RANGE:
            return Range(step);
        case StepKind::LABEL:
            return Label(step);
        case StepKind::TRANSLATED:
            return Translation(step);
        case StepKind::AVAILABILITY:
            return Availability(step);
        case StepKind::QUALITY:
            return {"quality", "the device says " + TextOf(step.value)};
        case StepKind::INPUT:
            return {"input", Quoted(step.text) + " cannot be used"};
        case StepKind::PARAMETERS:
            return {"inputs", ParametersText(step.value), true, false};
        case StepKind::RESULT:
            return {"result", step.reason == Reason::GOOD ? ResultText(step.value) : WhyNoResult(part)};
        case StepKind::PREVIOUS:
            return Previous(step);
        case StepKind::FAILURE:
            return {"failure", FailureText(step)};
        case StepKind::CONSTANT:
            return {"constant", TextOf(step.value)};
        case StepKind::OBJECT:
        case StepKind::GROUP:
        case StepKind::ELEMENT:
        case StepKind::COMPUTATION:
        case StepKind::ALARM:
        case StepKind::FRAME:
        case StepKind::VALUE:
            break;
    }
    return {};
}

std::string ValueText(const Explanation& part) {
    const bool isShown = Find(part, StepKind::LABEL) || (part.value.is_number() && Find(part, StepKind::RAW));
    return part.kind == Kind::ELEMENT && !part.value.is_null() && !isShown ? TextOf(part.value) : "";
}

std::vector<const char*> MissingSteps(const Explanation& part) {
    constexpr std::pair<StepKind, const char*> OPTIONAL[] = {
        {StepKind::SWAPPED, "word order"}, {StepKind::PATTERN, "pattern"}, {StepKind::SCALED, "scale"}};
    std::vector<const char*> labels;
    for (const auto& [kind, label] : OPTIONAL) {
        if (part.kind == Kind::ELEMENT && !Find(part, kind)) {
            labels.push_back(label);
        }
    }
    return labels;
}

std::string KindText(const Explanation& part) {
    if (part.kind == Kind::ELEMENT && part.registers) {
        return part.registers->type;
    }
    return part.kind == Kind::COMPUTATION ? "chain " + Quoted(part.name) : "";
}

}  // namespace kzm::ModbusTool
