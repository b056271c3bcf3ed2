#pragma once

#include <string_view>

#include "dictionary/AttributeSources.h"
#include "dictionary/StructureTable.h"

// The dictionary's rows as their tables write them, and what must hold for each.
namespace kz::orba::VortaExtensionModbus::Device {

using Structures::TakePart;

constexpr std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

// "path=id" joined by ";". A path without id is fed by an id of the key: the first by the text before the key's ";",
// the next by the text after it.
constexpr AttributeSources ParseSources(std::string_view key, std::string_view text) {
    AttributeSources sources;
    while (!text.empty()) {
        std::string_view id = TakePart(text, ';');
        const bool named = id.find('=') != std::string_view::npos;
        const std::string_view path = TakePart(id, '=');
        sources.Add({path, named ? id : TakePart(key, ';')});
    }
    return sources;
}

// One row of a table. What does not hold ends the compilation at the row.
struct DictionaryRow {
    // Sources: see ParseSources. Class: after the prefix of the table's classes; one that is empty or ends in "." goes
    // on with the last part of the name.
    consteval DictionaryRow(std::string_view rowKey, std::string_view rowName, StructureTemplate rowStructure,
                            std::string_view rowSources, std::string_view rowUnit = "", std::string_view rowClass = "")
        : key(rowKey), name(rowName), structure(rowStructure), sources(rowSources), unit(rowUnit), className(rowClass) {
        CheckTexts();
        CheckSources();
    }

    std::string_view key;
    std::string_view name;
    StructureTemplate structure;
    std::string_view sources;
    std::string_view unit;
    std::string_view className;

private:
    consteval void CheckTexts() const {
        if (key.empty() || name.empty()) {
            throw "a row needs key and name";
        }
        if (key.size() > 255 || name.size() > 255 || sources.size() > 255 || unit.size() > 255) {
            throw "a text of a row is longer than 255 bytes";
        }
        if (!unit.empty() && !Structures::Holds(structure, "unit")) {
            throw "the structure has no unit";
        }
    }

    consteval void CheckSources() const {
        const AttributeSources parsed = ParseSources(key, sources);
        if (parsed.size() != 1U + static_cast<std::size_t>(std::count(sources.begin(), sources.end(), ';'))) {
            throw "a row has more sources than AttributeSources can hold";
        }
        for (const AttributeSource& source : parsed) {
            if (source.id.empty() || !Structures::Holds(structure, source.path)) {
                throw "a source without id, or for an attribute that the structure does not have";
            }
        }
        CheckQuality(parsed.Find("value"), parsed.Find("quality"));
        CheckQuality(parsed.Find("elements.state.value"), parsed.Find("elements.state.quality"));
    }

    static consteval void CheckQuality(std::string_view value, std::string_view quality) {
        if (!quality.empty() &&
            !(quality.substr(0, value.size()) == value && quality.substr(value.size()) == "_Qual")) {
            throw "a quality comes from the id of the value with \"_Qual\"";
        }
    }
};

}  // namespace kz::orba::VortaExtensionModbus::Device
