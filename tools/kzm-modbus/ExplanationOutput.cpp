#include "ExplanationOutput.h"

#include <algorithm>
#include <iostream>

#include "AlarmTable.h"
#include "OtherReadings.h"
#include "ReadElements.h"
#include "ShownObjects.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::Reason;
using nlohmann::json;

namespace {

// More are for programs.
constexpr std::size_t SHOWN_READINGS = 6;

// An element of which the value is missing or doubtful.
struct Doubtful {
    std::string role;
    std::string unit;   // of its value; may be empty
    std::string doubt;  // empty for a missing value
    std::vector<OtherReading> readings;
};

// Whether an element is the value of an element of an object: "phase1 / value".
bool IsPartOfGroup(const Explanation& explanation, const std::string& role) {
    return explanation.kind == Explanation::Kind::GROUP &&
           std::ranges::any_of(explanation.parts, [&](const auto& part) { return role == NameOf(part) + " / value"; });
}

std::vector<Doubtful> DoubtfulOf(const Explanation& explanation, const RegisterCache& cache, const std::string& unit) {
    std::vector<Doubtful> doubtful;
    ForEachElement(explanation, [&](const Explanation& element, const std::string& role) {
        const std::string own = role == "value" || IsPartOfGroup(explanation, role) ? unit : "";
        const std::string doubt = element.value.is_null() ? "" : DoubtOf(element, own);
        if (!doubt.empty() || element.value.is_null()) {
            std::vector<OtherReading> readings = OtherReadingsOf(element, cache, own);
            if (!readings.empty()) {
                doubtful.push_back({role, own, doubt, std::move(readings)});
            }
        }
    });
    return doubtful;
}

std::string LooksWrong(const Doubtful& element) {
    return element.role + " looks wrong: " + element.doubt;
}

void PrintDoubtful(const Doubtful& element, bool all) {
    std::cout << Printable(element.doubt.empty() ? element.role + " is missing" : LooksWrong(element))
              << ". The same registers, read otherwise:\n";
    std::vector<Row> rows;
    for (const OtherReading& reading : element.readings) {
        if (all || rows.size() < SHOWN_READINGS) {
            const std::string text = reading.value.is_null() ? "no value" : TextOf(reading.value);
            const bool hasUnit = reading.value.is_number() && !element.unit.empty();
            rows.push_back({{"  " + text + (hasUnit ? " " + Printable(element.unit) : "")},
                            {reading.change},
                            {reading.doubt, Style::FAINT}});
        }
    }
    PrintTable(rows);
}

// The heading is longer than all below it.
void PrintTree(const Explanation& explanation, const std::string& heading, const TreeForm& form) {
    std::vector<Row> rows = TreeOf(explanation, heading, form);
    PrintTable({rows.front()});
    rows.erase(rows.begin());
    PrintTable(rows);
    std::cout << '\n';
}

// The doubt of a good value is as good as a reason.
std::string DoubtIn(const std::vector<Doubtful>& doubtful) {
    const auto found = std::ranges::find_if(doubtful, [](const Doubtful& element) { return !element.doubt.empty(); });
    return found == doubtful.end() ? "" : ", but " + LooksWrong(*found);
}

void PrintReason(const Explanation& explanation, const std::string& whose, const std::vector<Doubtful>& doubtful) {
    const Why& why = explanation.why;
    const auto& row = ModbusDeviceModel::DataModel::RowOf(why.reason);
    const bool isGood = why.reason == Reason::GOOD;
    const std::string text = "Reason" + whose + ": " + std::string(row.name) +
                             (isGood ? DoubtIn(doubtful) : " (" + std::string(row.opcUaStatus) + "): " + why.Text());
    std::cout << Styled({Printable(text), isGood ? Style::PLAIN : Style::FAULT}) << '\n';
}

json ToJson(const Doubtful& element) {
    json line{{"role", element.role}, {"doubt", element.doubt}, {"readings", json::array()}};
    for (const OtherReading& reading : element.readings) {
        line["readings"].push_back({{"value", reading.value}, {"change", reading.change}, {"doubt", reading.doubt}});
    }
    return line;
}

// The tree, and what else its doubtful values would be.
std::vector<Doubtful> PrintTree(const Explanation& explanation, const std::string& heading, const std::string& unit,
                                const RegisterCache& cache, const TreeForm& form) {
    PrintTree(explanation, heading, form);
    std::vector<Doubtful> doubtful = DoubtfulOf(explanation, cache, unit);
    for (const Doubtful& element : doubtful) {
        PrintDoubtful(element, form.all);
        std::cout << '\n';
    }
    return doubtful;
}

void PrintJson(const Explanation& explanation, const std::string& shown, const std::string& unit,
               const RegisterCache& cache, const TreeForm& form) {
    json line = explanation.ToJson();
    line["profile"] = form.profile;
    line["shown"] = json::parse(shown);
    line["otherwise"] = json::array();
    for (const Doubtful& element : DoubtfulOf(explanation, cache, unit)) {
        line["otherwise"].push_back(ToJson(element));
    }
    std::cout << line.dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
}

}  // namespace

void PrintExplanations(const std::vector<ObjectReading>& readings, const Moment& moment, const RegisterCache& cache,
                       const TreeForm& form) {
    std::vector<std::vector<Doubtful>> doubtful;
    for (const ObjectReading& reading : readings) {
        doubtful.push_back(PrintTree(reading.explanation, NameOf(*reading.object), reading.object->unit, cache, form));
    }
    PrintTable(readings, moment.time, {moment.round});
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const std::string whose = readings.size() == 1 ? "" : " of " + NameOf(*readings[i].object);
        PrintReason(readings[i].explanation, whose, doubtful[i]);
    }
}

void PrintExplanation(const AlarmReading& reading, const Moment& moment, const RegisterCache& cache,
                      const TreeForm& form) {
    const auto doubtful = PrintTree(reading.explanation, reading.alarm->element->GetName(), "", cache, form);
    PrintTable({AlarmHeadings(/*raw=*/false), RowOf(reading, moment.time, /*raw=*/false)});
    PrintReason(reading.explanation, "", doubtful);
}

void PrintExplanationJson(const ObjectReading& reading, const Moment& moment, const RegisterCache& cache,
                          const TreeForm& form) {
    PrintJson(reading.explanation, ToJsonLine(reading, moment.time, /*raw=*/false), reading.object->unit, cache, form);
}

void PrintExplanationJson(const AlarmReading& reading, const Moment& moment, const RegisterCache& cache,
                          const TreeForm& form) {
    PrintJson(reading.explanation, ToJsonLine(reading, moment.time, /*raw=*/false), "", cache, form);
}

}  // namespace kzm::ModbusTool
