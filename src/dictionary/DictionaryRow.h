#pragma once

#include <string_view>

#include "dictionary/AttributeSources.h"
#include "dictionary/StructureTable.h"

// The dictionary's rows as their tables write them, and what must hold for each; everything here is used at compile
// time only. DictionaryPool.h packs the rows.
namespace kz::orba::VortaExtensionModbus::Device {

struct DictionaryRow {
    std::string_view key;
    std::string_view name;
    StructureTemplate structure;
    // "path=id" joined by ";". A path without id is fed by an id of the key: the first by the text before the key's ";",
    // the next by the text after it.
    std::string_view sources;
    std::string_view unit = "";
    // After the prefix of the table's classes. One that is empty or ends in "." goes on with the last part of the name.
    std::string_view className = "";
};

// Takes the text up to the separator off the front; all of it where there is no separator.
constexpr std::string_view TakePart(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return part;
}

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

constexpr std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

namespace Proof {

constexpr bool Holds(StructureTemplate structure, std::string_view path) {
    if (const auto* value = Structures::Find(Structures::VALUES, structure)) {
        return path == "value" || Structures::Has(value->members, path);
    }
    const auto* alarm = Structures::Find(Structures::ALARMS, structure);
    if (alarm == nullptr || TakePart(path, '.') != "elements") {
        return false;
    }
    const std::string_view key = TakePart(path, '.');
    for (const Structures::SubElement& element : Structures::SUB_ELEMENTS) {
        if (element.key == key) {
            return Structures::BelongsTo(element, *alarm) && (path == "value" || Structures::Has(element.members, path));
        }
    }
    return false;
}

// A quality id is the value id with "_Qual".
constexpr bool QualityFits(const AttributeSources& sources, std::string_view value, std::string_view quality) {
    const std::string_view id = sources.Find(quality);
    const std::string_view of = sources.Find(value);
    return id.empty() || (id.substr(0, of.size()) == of && id.substr(of.size()) == "_Qual");
}

constexpr bool SourcesFit(const DictionaryRow& row) {
    const AttributeSources sources = ParseSources(row.key, row.sources);
    std::size_t expected = 0;
    for (std::string_view rest = row.sources; !rest.empty(); ++expected) {
        TakePart(rest, ';');
    }
    for (const AttributeSource& source : sources) {
        if (source.id.empty() || !Holds(row.structure, source.path)) {
            return false;
        }
    }
    return expected > 0 && sources.size() == expected && QualityFits(sources, "value", "quality") &&
           QualityFits(sources, "elements.state.value", "elements.state.quality");
}

constexpr bool IsAlarm(const DictionaryRow& row) {
    return Structures::Find(Structures::ALARMS, row.structure) != nullptr;
}

constexpr bool AscendingKeys(const DictionaryRow* row, std::size_t count) {
    for (std::size_t i = 1; i < count; ++i) {
        if (!(row[i - 1].key < row[i].key)) {
            return false;
        }
    }
    return true;
}

// What every row of a table must fulfil.
template <std::size_t N>
constexpr bool RowsHold(const DictionaryRow (&rows)[N], bool alarms) {
    return AscendingKeys(rows, N) && std::all_of(std::begin(rows), std::end(rows), [&](const DictionaryRow& row) {
               return SourcesFit(row) && IsAlarm(row) == alarms && (row.unit.empty() || Holds(row.structure, "unit"));
           });
}

}  // namespace Proof

}  // namespace kz::orba::VortaExtensionModbus::Device
