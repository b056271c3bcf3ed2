#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "dictionary/StructureTable.h"

// The rows of the dictionary as their tables spell them, and what must hold for each.
namespace kz::orba::VortaExtensionModbus::Device {

constexpr std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

// The sources of a row, in byte order of their paths.
class RowSources {
public:
    struct Source {
        std::string_view path;
        std::string_view id;
    };

    // Parses "path=id" joined by ";". A path without an id takes an id of the key: the first one the text before the
    // key's ";", the next one the text after it.
    constexpr RowSources(std::string_view key, std::string_view text) {
        while (!text.empty()) {
            std::string_view id = Structures::TakePart(text, ';');
            const bool hasId = id.find('=') != std::string_view::npos;
            const std::string_view path = Structures::TakePart(id, '=');
            Add({path, hasId ? id : Structures::TakePart(key, ';')});
        }
        std::sort(mSources.begin(), mSources.begin() + mSize,
                  [](const Source& left, const Source& right) { return left.path < right.path; });
    }

    constexpr const Source* begin() const { return mSources.data(); }
    constexpr const Source* end() const { return mSources.data() + mSize; }
    constexpr std::size_t size() const { return mSize; }

    // The id that feeds the path; empty if there is none.
    constexpr std::string_view Find(std::string_view path) const {
        for (const Source& source : *this) {
            if (source.path == path) {
                return source.id;
            }
        }
        return {};
    }

private:
    constexpr void Add(Source source) {
        if (mSize == mSources.size()) {
            throw "a row has more sources than RowSources can hold";
        }
        mSources[mSize++] = source;
    }

    std::array<Source, 4> mSources{};
    std::size_t mSize = 0;
};

// One row of a table. An inconsistent row is a compile error at that row.
struct DictionaryRow {
    // Sources: see RowSources. Class: without the prefix that the classes of the table share; the last part of the name
    // is appended to one that is empty or ends in ".".
    consteval DictionaryRow(std::string_view rowKey, std::string_view rowName, StructureTemplate rowStructure,
                            std::string_view rowSources, std::string_view rowUnit = "", std::string_view rowClass = "")
        : key(rowKey), name(rowName), structure(rowStructure), sources(rowSources), unit(rowUnit), className(rowClass) {
        CheckTexts();
        CheckSources();
    }

    constexpr RowSources GetSources() const { return {key, sources}; }

    // What follows className in the class of the row.
    constexpr std::string_view GetClassEnd() const {
        return className.empty() || className.back() == '.' ? LastPart(name) : std::string_view();
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
            throw "a row needs a key and a name";
        }
        if (!unit.empty() && !Structures::Holds(structure, "unit")) {
            throw "the structure of a row with a unit has no member \"unit\"";
        }
    }

    consteval void CheckSources() const {
        const RowSources parsed = GetSources();
        std::string_view last;
        for (const RowSources::Source& source : parsed) {
            if (source.id.empty() || source.path == last || !Structures::Holds(structure, source.path)) {
                throw "a source has no id, is given twice, or feeds an attribute that the structure does not have";
            }
            last = source.path;
        }
        CheckQuality(parsed.Find("value"), parsed.Find("quality"));
        CheckQuality(parsed.Find("elements.state.value"), parsed.Find("elements.state.quality"));
    }

    static consteval void CheckQuality(std::string_view value, std::string_view quality) {
        const bool isOfValue = quality.starts_with(value) && quality.substr(value.size()) == "_Qual";
        if (!quality.empty() && !isOfValue) {
            throw "the id of a quality must be the id of the value followed by \"_Qual\"";
        }
    }
};

// Whether the rows are in byte order of their keys, each key once.
constexpr bool AreInOrder(std::span<const DictionaryRow> rows) {
    const auto notBefore = [](const DictionaryRow& left, const DictionaryRow& right) { return left.key >= right.key; };
    return std::adjacent_find(rows.begin(), rows.end(), notBefore) == rows.end();
}

}  // namespace kz::orba::VortaExtensionModbus::Device
