#include "StepText.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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
    const std::string held = step.applied ? "they hold " + step.text + ": \"not available\""
                                          : "not " + step.text + ", which means \"not available\"";
    return {"pattern", held, step.applied};
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
        return {"range", "the registers hold " + NumberText(step.number) + ", which is not a finite number"};
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
    const std::string translated = TextOf(step.value);
    return {"translation", Quoted(step.text) + " becomes " + (step.value.is_string() ? Quoted(translated) : translated),
            changes};
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

using Describe = StepText (*)(const Explanation& part, const Step& step);

struct StepRow {
    StepKind kind;
    Describe describe;
};

// Made of the step alone.
template <StepText (*OF_STEP)(const Step&)>
StepText Alone(const Explanation&, const Step& step) {
    return OF_STEP(step);
}

StepText SaidElsewhere(const Explanation&, const Step&) {
    return {};
}

StepText Received(const Step& step) {
    const std::string bytes = step.bytes.empty() ? "nothing" : HexOf(step.bytes) + ", quality " + TextOf(step.value);
    return {"received", bytes, /*changes=*/true, /*isPlaced=*/false};
}

// A single register has no word order.
StepText Swapped(const Explanation& part, const Step& step) {
    const Step* received = Find(part, StepKind::RECEIVED);
    return {"word order", HexOf(step.bytes) + ", low word first", !received || received->bytes != step.bytes};
}

StepText Gathered(const Step& step) {
    return {"gathered", HexOf(step.bytes) + ", low byte first", /*changes=*/false, /*isPlaced=*/false};
}

StepText Raw(const Explanation& part, const Step& step) {
    return {"number", NumberOf(part, step.number, 1, 0), /*changes=*/true, /*isPlaced=*/false};
}

StepText Exponent(const Step& step) {
    return {"exponent", NumberText(step.number)};
}

StepText Quality(const Step& step) {
    return {"quality", "the device says " + TextOf(step.value)};
}

StepText Input(const Step& step) {
    return {"input", Quoted(step.text) + " cannot be used"};
}

StepText Parameters(const Step& step) {
    return {"inputs", ParametersText(step.value), /*changes=*/true, /*isPlaced=*/false};
}

StepText Result(const Explanation& part, const Step& step) {
    return {"result", step.reason == Reason::GOOD ? ResultText(step.value) : part.why.Text()};
}

StepText Failure(const Step& step) {
    const std::string meaning(RowOf(step.reason).meaning);
    return {"failure", step.text.empty() ? meaning : meaning + ": " + step.text};
}

StepText Constant(const Step& step) {
    return {"constant", TextOf(step.value)};
}

// Row n is step n.
constexpr StepRow STEPS[] = {
    {StepKind::OBJECT, SaidElsewhere},
    {StepKind::GROUP, SaidElsewhere},
    {StepKind::ELEMENT, SaidElsewhere},
    {StepKind::COMPUTATION, SaidElsewhere},
    {StepKind::CONSTANT, Alone<Constant>},
    {StepKind::ALARM, SaidElsewhere},
    {StepKind::FRAME, SaidElsewhere},
    {StepKind::RECEIVED, Alone<Received>},
    {StepKind::SWAPPED, Swapped},
    {StepKind::PATTERN, Alone<Pattern>},
    {StepKind::MASKED, Alone<Mask>},
    {StepKind::GATHERED, Alone<Gathered>},
    {StepKind::RAW, Raw},
    {StepKind::EXPONENT, Alone<Exponent>},
    {StepKind::SCALED, Scale},
    {StepKind::RANGE, Alone<Range>},
    {StepKind::LABEL, Alone<Label>},
    {StepKind::TRANSLATED, Alone<Translation>},
    {StepKind::AVAILABILITY, Alone<Availability>},
    {StepKind::QUALITY, Alone<Quality>},
    {StepKind::VALUE, SaidElsewhere},
    {StepKind::INPUT, Alone<Input>},
    {StepKind::PARAMETERS, Alone<Parameters>},
    {StepKind::RESULT, Result},
    {StepKind::PREVIOUS, Alone<Previous>},
    {StepKind::FAILURE, Alone<Failure>},
};
static_assert([] {
    for (std::size_t i = 0; i < std::size(STEPS); ++i) {
        if (static_cast<std::size_t>(STEPS[i].kind) != i) {
            return false;
        }
    }
    return STEPS[std::size(STEPS) - 1].kind == StepKind::FAILURE;
}());

}  // namespace

StepText TextOf(const Explanation& part, const Step& step) {
    return STEPS[static_cast<std::size_t>(step.kind)].describe(part, step);
}

std::string ValueText(const Explanation& part) {
    if (part.kind != Kind::ELEMENT || part.value.is_null() || Find(part, StepKind::LABEL)) {
        return "";
    }
    const Step* const scaled = Find(part, StepKind::SCALED);
    const Step* const number = scaled ? scaled : Find(part, StepKind::RAW);
    if (!number || !part.value.is_number()) {
        return TextOf(part.value);
    }
    const std::string value = NumberOf(part, part.value.get<double>(), number->factor, number->offset);
    return value == NumberOf(part, number->number, number->factor, number->offset) ? "" : value + ", rounded";
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
