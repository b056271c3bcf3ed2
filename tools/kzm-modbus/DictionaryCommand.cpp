#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "Commands.h"
#include "TextTable.h"
#include "dictionary/CustomAlarmElementStructure.h"
#include "dictionary/DeviceElementLookUp.h"
#include "dictionary/DynamicDeviceClasses.h"
#include "gateway/profile/ElementKey.h"

namespace kzm::ModbusTool {

using namespace kz::orba::VortaExtensionModbus::Device;
using nlohmann::json;

namespace {

struct DictionaryOptions {
    std::string key;
    std::string search;
    std::string table;
    std::string className;
    bool json = false;
};

struct Element {
    std::string_view table;
    std::string_view key;
    DictionaryEntry entry;
};

char LowerCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// Whether the text holds the other, in any case of ASCII letters.
bool Holds(std::string_view text, std::string_view wanted) {
    const auto same = [](char left, char right) { return LowerCase(left) == LowerCase(right); };
    return std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), same) != text.end();
}

bool IsSearchedFor(const Element& element, std::string_view wanted) {
    const AttributeSources& sources = element.entry.sources;
    return Holds(element.key, wanted) || Holds(element.entry.name, wanted) || Holds(element.entry.unit, wanted) ||
           std::any_of(sources.begin(), sources.end(),
                       [&](const AttributeSource& source) { return Holds(source.second, wanted); });
}

// The whole class, or the end of it after a dot, in any case.
bool IsOfClass(std::string_view name, std::string_view wanted) {
    const std::size_t start = name.size() - std::min(name.size(), wanted.size());
    return Holds(name.substr(start), wanted) && (start == 0 || name[start - 1] == '.');
}

std::vector<Element> Select(const DictionaryOptions& options) {
    std::vector<Element> selected;
    for (const DictionaryTable* table : DeviceElementLookUp::GetTables()) {
        for (const auto& [key, entry] : *table) {
            const Element element{table->GetName(), key, entry};
            if ((options.key.empty() || options.key == key) &&
                (options.table.empty() || options.table == element.table) &&
                (options.className.empty() || IsOfClass(entry.className, options.className)) &&
                IsSearchedFor(element, options.search)) {
                selected.push_back(element);
            }
        }
    }
    return selected;
}

json ToJson(const Element& element) {
    json sources = json::object();
    for (const auto& [path, id] : element.entry.sources) {
        sources[std::string(path)] = id;
    }
    return {
        {"key", element.key},         {"sources", std::move(sources)},    {"name", element.entry.name},
        {"unit", element.entry.unit}, {"class", element.entry.className}, {"structure", element.entry.structure.get()}};
}

// The dictionary, of its rows those selected.
json ToJson(const std::vector<Element>& elements) {
    json dump{{"dynamic_classes", json::array()},
              {"default_class", DeviceElementLookUp::GetClass("")},
              {"default_structure", DeviceElementLookUp::GetStructure("")},
              {"custom_alarm_structure", CustomAlarmElementStructure::GetStructure()}};
    for (const DictionaryTable* table : DeviceElementLookUp::GetTables()) {
        dump["tables"][std::string(table->GetName())] = json::array();
    }
    for (const Element& element : elements) {
        dump["tables"][std::string(element.table)].push_back(ToJson(element));
    }
    for (const std::string_view name : DYNAMIC_DEVICE_CLASS_NAMES) {
        dump["dynamic_classes"].push_back(name);
    }
    return dump;
}

void PrintElements(const std::vector<Element>& elements) {
    std::vector<Row> rows{HeadingRow({"KEY", "TABLE", "NAME", "UNIT", "CLASS"})};
    for (const Element& element : elements) {
        rows.push_back(TextRow({std::string(element.key), std::string(element.table), std::string(element.entry.name),
                                std::string(element.entry.unit), std::string(element.entry.className)}));
    }
    PrintTable(rows);
}

// A row for each attribute of the structure: path, the device element that feeds it, initial value.
void AddAttributes(std::vector<Row>& rows, const json& skeleton, const std::string& parent, const Element& element) {
    for (const auto& [name, value] : skeleton.items()) {
        const std::string path = parent + name;
        if (value.is_object()) {
            AddAttributes(rows, value, path + ".", element);
        } else {
            const std::string initial = value.is_null() ? "" : value.dump();
            rows.push_back(TextRow({path, std::string(element.entry.sources.Find(path)), initial}));
        }
    }
}

void PrintElement(const Element& element) {
    std::cout << "key    " << element.key << "\ntable  " << element.table << "\nname   " << element.entry.name
              << "\nunit   " << (element.entry.unit.empty() ? "none" : element.entry.unit.View()) << "\nclass  "
              << element.entry.className << "\n\n";
    std::vector<Row> rows{HeadingRow({"ATTRIBUTE", "FED BY", "INITIAL VALUE"})};
    AddAttributes(rows, element.entry.structure.get().front(), "", element);
    PrintTable(rows);
}

std::string WhyNothingIsFound(const DictionaryOptions& options) {
    if (options.key.empty()) {
        return "no element of the dictionary matches the options";
    }
    const std::string suggestion = ModbusGateway::ElementKey::Suggestion(options.key);
    return "the dictionary has no key " + ModbusGateway::Quoted(options.key) +
           (suggestion.empty() ? "; --search TEXT searches names, too" : suggestion);
}

ExitStatus ShowDictionary(const DictionaryOptions& options) {
    const std::vector<Element> elements = Select(options);
    if (elements.empty()) {
        throw Failure(ExitStatus::NOT_FOUND, WhyNothingIsFound(options));
    }
    if (options.json) {
        std::cout << (options.key.empty() ? ToJson(elements) : ToJson(elements.front())) << '\n';
    } else {
        options.key.empty() ? PrintElements(elements) : PrintElement(elements.front());
    }
    return ExitStatus::OK;
}

}  // namespace

void AddDictionaryCommand(CommandLine& line) {
    const auto options = std::make_shared<DictionaryOptions>();
    CommandSyntax dictionary =
        line.AddCommand("dictionary", "Show elements of the element dictionary, by key or by search",
                        [options] { return ShowDictionary(*options); });
    std::vector<std::string> tables;
    for (const DictionaryTable* table : DeviceElementLookUp::GetTables()) {
        tables.push_back(table->GetName());
    }
    dictionary.AddOptionalArgument("KEY", "The whole key of one element, e.g. \"DTMinIA;MinIA\"", options->key);
    dictionary.AddText(
        {"--search", "TEXT", "Only elements with this text in their key, name, unit or ids, upper or lower case"},
        options->search);
    dictionary.AddChoice({"--table", "TABLE", "Only elements of one table"}, tables, options->table);
    dictionary.AddText({"--class", "CLASS", "Only elements of one class; the part after one of its dots is enough"},
                       options->className);
    dictionary.Exclude({"--search", "--table", "--class"}, "KEY");
    dictionary.AddFlag("--json", "The element, or the dictionary, as one JSON object", options->json);
    dictionary.SetExamples({"dictionary \"DTMinIA;MinIA\"", "dictionary --search thd --table measurement"});
}

}  // namespace kzm::ModbusTool
