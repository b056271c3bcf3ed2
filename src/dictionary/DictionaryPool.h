#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "dictionary/ClassPool.h"
#include "dictionary/DictionaryRow.h"

// A table as it lies in memory: one pool of characters for all texts of its rows, so that the library is loaded without
// a pointer to adjust per text.
namespace kz::orba::VortaExtensionModbus::Device {

struct PackedRow {
    std::uint32_t text;  // where the row's texts begin in the pool: key, name, sources, unit
    std::uint8_t keySize;
    std::uint8_t nameSize;
    std::uint8_t sourcesSize;
    std::uint8_t unitSize;
    std::uint16_t classIndex;  // for ClassNameAt
    StructureTemplate structure;
};

template <std::size_t ROWS, std::size_t CHARACTERS>
struct DictionaryPool {
    std::array<PackedRow, ROWS> rows{};
    std::array<char, CHARACTERS> text{};
};

// Whether that is the row's class, after the prefix of the table's classes.
constexpr bool IsClassOf(const DictionaryRow& row, std::string_view candidate) {
    const bool goesOn = row.className.empty() || row.className.back() == '.';
    const std::string_view rest = goesOn ? LastPart(row.name) : std::string_view();
    return candidate.size() == row.className.size() + rest.size() &&
           candidate.substr(0, row.className.size()) == row.className && candidate.substr(row.className.size()) == rest;
}

constexpr std::size_t TextSize(const DictionaryRow& row) {
    return row.key.size() + row.name.size() + row.sources.size() + row.unit.size();
}

template <std::size_t N>
constexpr std::size_t TextSize(const DictionaryRow (&rows)[N]) {
    std::size_t size = 0;
    for (const DictionaryRow& row : rows) {
        size += TextSize(row);
    }
    return size;
}

template <std::size_t N>
constexpr bool KeysAscend(const DictionaryRow (&rows)[N]) {
    const auto notBefore = [](const DictionaryRow& left, const DictionaryRow& right) { return left.key >= right.key; };
    return std::adjacent_find(std::begin(rows), std::end(rows), notBefore) == std::end(rows);
}

// Packs a table whose classes begin with the prefix. A class that is unknown ends the compilation.
template <const auto& ROWS>
consteval auto Pack(std::string_view classPrefix) {
    DictionaryPool<std::size(ROWS), TextSize(ROWS)> pool;
    std::uint32_t end = 0;
    const auto append = [&](std::string_view text) {
        std::copy(text.begin(), text.end(), pool.text.begin() + end);
        end += static_cast<std::uint32_t>(text.size());
        return static_cast<std::uint8_t>(text.size());
    };
    for (std::size_t i = 0; i < std::size(ROWS); ++i) {
        const DictionaryRow& row = ROWS[i];
        PackedRow& packed = pool.rows[i];
        packed.text = end;
        packed.keySize = append(row.key);
        packed.nameSize = append(row.name);
        packed.sourcesSize = append(row.sources);
        packed.unitSize = append(row.unit);
        packed.classIndex = IndexOfClass(classPrefix, [&](std::string_view name) { return IsClassOf(row, name); });
        packed.structure = row.structure;
    }
    return pool;
}

}  // namespace kz::orba::VortaExtensionModbus::Device
