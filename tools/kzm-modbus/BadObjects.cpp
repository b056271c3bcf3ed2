#include "BadObjects.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>

#include "ExplanationTree.h"
#include "ReadElements.h"
#include "Text.h"
#include "TextTable.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::Reason;
using nlohmann::json;

namespace {

struct Cause {
    Reason reason;
    std::string text;
    std::vector<const ObjectReading*> readings;
};

// What is the same for all objects of a cause: that an input is missing is why the input is.
Why CauseOf(const Explanation& explanation) {
    Why why = explanation.why;
    if (why.reason == Reason::INPUT_MISSING && why.cause != Reason::GOOD) {
        why.reason = why.cause;
        why.input.clear();
    }
    return why;
}

// Those with most objects first; the others in the order in which they were met.
std::vector<Cause> CausesOf(const std::vector<ObjectReading>& readings) {
    std::vector<Cause> causes;
    std::map<std::string, std::size_t> positions;
    for (const ObjectReading& reading : readings) {
        if (reading.explanation.why.reason != Reason::GOOD) {
            const Why why = CauseOf(reading.explanation);
            const auto [known, isNew] = positions.emplace(why.Text(), causes.size());
            if (isNew) {
                causes.push_back({why.reason, known->first, {}});
            }
            causes[known->second].readings.push_back(&reading);
        }
    }
    std::ranges::stable_sort(causes, std::greater(), [](const Cause& cause) { return cause.readings.size(); });
    return causes;
}

// The registers that an object asks for, where they are few.
std::string ElementsOf(const ObjectReading& reading) {
    std::string text;
    std::size_t count = 0;
    ForEachElement(reading.explanation, [&](const Explanation& element, const std::string&) {
        text += (count++ == 0 ? "" : ", ") + AddressesOf(*element.registers);
    });
    return count <= 3 ? text : std::to_string(count) + " elements";
}

std::string PlaceOf(const Explanation& explanation, const std::string& profile) {
    const std::string name = std::filesystem::path(profile).filename().string();
    return explanation.place ? Printable(name) + ":" + std::to_string(explanation.place->line) : "";
}

void PrintCauses(const std::vector<Cause>& causes, const std::string& profile) {
    std::vector<Row> rows;
    for (const Cause& cause : causes) {
        for (const ObjectReading* reading : cause.readings) {
            rows.push_back({{"    " + Printable(NameOf(*reading->object))},
                            {ElementsOf(*reading)},
                            {PlaceOf(reading->explanation, profile), Style::FAINT}});
        }
    }
    const TableLayout layout(rows);
    auto row = rows.begin();
    for (const Cause& cause : causes) {
        std::cout << Styled({Printable(cause.text), Style::FAULT}) << ": " << Counted(cause.readings.size(), "object")
                  << '\n';
        for (std::size_t i = 0; i < cause.readings.size(); ++i) {
            std::cout << layout.LineOf(*row++) << '\n';
        }
    }
}

json ToJson(const Cause& cause) {
    json objects = json::array();
    for (const ObjectReading* reading : cause.readings) {
        json line{{"name", reading->object->name}, {"alias", reading->object->alias}};
        AddReason(reading->explanation, line);
        objects.push_back(std::move(line));
    }
    const auto& reason = ModbusDeviceModel::DataModel::RowOf(cause.reason);
    return {{"reason", reason.name}, {"text", cause.text}, {"objects", std::move(objects)}};
}

}  // namespace

void PrintBadObjects(const std::vector<ObjectReading>& readings, const std::string& profile, bool asJson) {
    const std::vector<Cause> causes = CausesOf(readings);
    std::size_t good = readings.size();
    json list = json::array();
    for (const Cause& cause : causes) {
        good -= cause.readings.size();
        list.push_back(asJson ? ToJson(cause) : json());
    }
    if (asJson) {
        const json all{{"good", good}, {"causes", std::move(list)}};
        std::cout << all.dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
        return;
    }
    if (!causes.empty()) {
        PrintCauses(causes, profile);
    }
    std::cout << good << " of " << Counted(readings.size(), "object") << " are Good\n";
}

}  // namespace kzm::ModbusTool
