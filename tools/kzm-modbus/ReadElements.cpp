#include "ReadElements.h"

#include <algorithm>

#include "Text.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::StepKind;
using nlohmann::json;

namespace {

void Visit(const Explanation& part, const std::string& path,
           const std::function<void(const Explanation&, const std::string&)>& visit) {
    if (part.registers) {
        visit(part, path);
    }
    for (const Explanation& child : part.parts) {
        Visit(child, path.empty() ? NameOf(child) : path + " / " + NameOf(child), visit);
    }
}

std::string BytesOf(const Explanation& element) {
    const auto received = std::ranges::find(element.steps, StepKind::RECEIVED, &Explanation::Step::kind);
    return received == element.steps.end() ? "" : HexOf(received->bytes);
}

}  // namespace

std::string NameOf(const Explanation& part) {
    const bool isPart = part.kind == Explanation::Kind::OBJECT && part.place && !part.place->name.empty();
    return isPart ? part.place->name : part.role;
}

void ForEachElement(const Explanation& explanation,
                    const std::function<void(const Explanation& element, const std::string& path)>& visit) {
    Visit(explanation, explanation.registers ? explanation.role : "", visit);
}

std::uint64_t ReceivedOf(const Explanation& explanation) {
    std::uint64_t oldest = 0;
    ForEachElement(explanation, [&](const Explanation& element, const std::string&) {
        const std::uint64_t timestamp = element.registers->timestamp;
        oldest = timestamp != 0 && (oldest == 0 || timestamp < oldest) ? timestamp : oldest;
    });
    return oldest;
}

std::string RegistersOf(const Explanation& explanation) {
    std::string text;
    ForEachElement(explanation, [&](const Explanation& element, const std::string&) {
        const std::string bytes = BytesOf(element);
        text += text.empty() || bytes.empty() ? bytes : ", " + bytes;
    });
    return text;
}

void AddReason(const Explanation& explanation, json& line) {
    const auto& row = ModbusDeviceModel::DataModel::RowOf(explanation.why.reason);
    line["reason"] = row.name;
    line["statusCode"] = row.opcUaCode;
    if (const std::uint64_t received = ReceivedOf(explanation)) {
        line["received"] = DateTime::DateTime::ConvertToCalendarTime(received);
    }
}

void AddRaw(const Explanation& explanation, json& line) {
    json& raw = line["raw"] = json::array();
    ForEachElement(explanation, [&](const Explanation& element, const std::string& path) {
        const Explanation::Registers& registers = *element.registers;
        json entry{{"role", path},
                   {"function", static_cast<int>(registers.function)},
                   {"address", registers.address},
                   {"registers", BytesOf(element)},
                   {"frame", registers.frame}};
        if (registers.age) {
            entry["age"] = static_cast<double>(*registers.age) / 1000;
        }
        raw.push_back(std::move(entry));
    });
}

}  // namespace kzm::ModbusTool
