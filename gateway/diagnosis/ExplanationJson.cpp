#include <array>
#include <cmath>
#include <cstdio>

#include "DataModel/ElementData.h"
#include "gateway/diagnosis/Explanation.h"
#include "gateway/diagnosis/StepTable.h"

namespace kzm::ModbusGateway {

using namespace ModbusDeviceModel::DataModel;
using nlohmann::json;

namespace {

const char* NameOf(Explanation::Kind kind) {
    constexpr std::array NAMES{"other", "object", "group", "element", "computation", "constant", "alarm", "previous"};
    static_assert(NAMES.size() == static_cast<std::size_t>(Explanation::Kind::PREVIOUS) + 1);
    return NAMES[static_cast<std::size_t>(kind)];
}

// JSON has neither NaN nor infinities: they are the texts "nan", "inf" and "-inf".
json NumberOf(double number) {
    if (std::isfinite(number)) {
        return number;
    }
    const char* const infinity = number > 0 ? "inf" : "-inf";
    return std::isnan(number) ? "nan" : infinity;
}

std::string HexOf(const std::vector<std::uint8_t>& bytes) {
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += {DIGITS[byte >> 4], DIGITS[byte & 15]};
    }
    return text;
}

// Bytes that are not UTF-8 are replaced.
json TextOf(std::string text) {
    ElementData::SanitiseUTF8Sequence(text);
    return text;
}

template <typename Value>
void AddUnless(json& object, const char* member, const Value& value, const Value& usual) {
    if (value != usual) {
        object[member] = value;
    }
}

void AddNumbers(const Explanation::Step& step, json& object) {
    switch (step.kind) {
        case StepKind::SCALED:
            object["factor"] = NumberOf(step.factor);
            object["offset"] = NumberOf(step.offset);
            [[fallthrough]];
        case StepKind::RAW:
        case StepKind::EXPONENT:
        case StepKind::LABEL:
            object["number"] = NumberOf(step.number);
            break;
        case StepKind::RANGE:
            object["number"] = NumberOf(step.number);
            object["low"] = step.low;
            object["high"] = step.high;
            break;
        case StepKind::PREVIOUS:
            object["age"] = step.number;
            object["limit"] = step.high;
            break;
        case StepKind::PATTERN:
            object["matches"] = step.applied;
            break;
        default:  // the others have no numbers
            break;
    }
}

json ToJson(const Explanation::Step& step) {
    json object{{"step", RowOf(step.kind).name}};
    AddUnless(object, "bytes", HexOf(step.bytes), std::string());
    AddUnless(object, "mask", HexOf(step.mask), std::string());
    if (!step.text.empty()) {
        object["text"] = TextOf(step.text);
    }
    AddUnless(object, "value", step.value, json());
    AddNumbers(step, object);
    AddUnless(object, "line", step.line, std::size_t{0});
    if (step.reason != Reason::GOOD) {
        object["reason"] = RowOf(step.reason).name;
    }
    return object;
}

json ToJson(const Explanation::Registers& registers) {
    json object{{"function", static_cast<std::uint32_t>(registers.function)},
                {"address", registers.address},
                {"count", registers.count},
                {"type", registers.type},
                {"logicCode", registers.logicCode},
                {"frame", registers.frame},
                {"frameIndex", registers.frameIndex},
                {"timestamp", registers.timestamp},
                {"age", registers.age ? json(*registers.age) : json()},
                {"limit", registers.limit}};
    AddUnless(object, "exception", registers.exception, std::uint8_t{0});
    AddUnless(object, "ignoresAge", registers.ignoresAge, false);
    return object;
}

json ToJson(const ProfilePlace& place) {
    json object{{"line", place.line}, {"pointer", place.pointer}};
    AddUnless(object, "name", place.name, std::string());
    AddUnless(object, "lines", json(place.lines), json::object());
    return object;
}

}  // namespace

json Explanation::ToJson() const {
    json node{{"kind", NameOf(kind)},
              {"status", static_cast<std::int32_t>(status)},
              {"quality", ConvertToString(quality)},
              {"value", value},
              {"reason", why.ToJson()}};
    AddUnless(node, "role", role, std::string());
    AddUnless(node, "name", name, std::string());
    if (registers) {
        node["registers"] = ModbusGateway::ToJson(*registers);
    }
    if (place) {
        node["place"] = ModbusGateway::ToJson(*place);
    }
    for (const Step& step : steps) {
        node["steps"].push_back(ModbusGateway::ToJson(step));
    }
    for (const Explanation& part : parts) {
        node["parts"].push_back(part.ToJson());
    }
    if (!object.is_null()) {
        node["object"] = object;
        node["requestStatus"] = static_cast<std::int32_t>(requestStatus);
    }
    return node;
}

json Why::ToJson() const {
    const ReasonRow& row = RowOf(reason);
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(row.opcUaCode));
    json object{{"name", row.name}, {"text", TextOf(Text())}, {"opcua", {{"status", row.opcUaStatus}, {"code", code}}}};
    if (reason == Reason::GOOD) {
        return object;
    }
    AddUnless(object, "frame", frame, std::string());
    if (frameIndex) {
        object["frameIndex"] = *frameIndex;
    }
    if (age) {
        object["age"] = *age;
    }
    AddUnless(object, "limit", limit, std::uint64_t{0});
    AddUnless(object, "exception", exception, std::uint8_t{0});
    if (!text.empty()) {
        object["detail"] = TextOf(text);
    }
    AddUnless(object, "input", input, std::string());
    if (cause != Reason::GOOD) {
        object["cause"] = RowOf(cause).name;
    }
    if (number) {
        object["number"] = NumberOf(*number);
    }
    if (low < high) {
        object["low"] = low;
        object["high"] = high;
    }
    object["status"] = static_cast<std::int32_t>(status);
    return object;
}

}  // namespace kzm::ModbusGateway
