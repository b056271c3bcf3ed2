#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

#include "Export.h"
#include "dictionary/AttributeSources.h"
#include "dictionary/IndexIterator.h"
#include "dictionary/StructureTemplate.h"

namespace kz::orba::VortaExtensionModbus::Device {

// What the dictionary knows of one element. The texts are constants of the library.
struct DictionaryEntry {
    AttributeSources sources;     // which device elements feed it
    std::string_view name;        // of the data-model object, e.g. "ElectricalMeasurement.RmsMinCurrentPhsA"
    std::string_view unit;        // of the value, e.g. "A"; empty where it has none
    std::string_view className;   // e.g. "$iot.measurement.NumericalMeasurementValue<Float>"
    StructureTemplate structure;  // of the data-model object
};

struct PackedRow;

// One table of the dictionary: a read-only map from element key to entry, ordered by key byte by byte. Entries are made
// from constant memory when they are asked for. Thread-safe.
class KZM_MODBUS_EXPORT DictionaryTable {
public:
    // As a standard map calls them.
    using key_type = std::string_view;
    using mapped_type = DictionaryEntry;
    using value_type = std::pair<const key_type, mapped_type>;
    using const_iterator = IndexIterator<DictionaryTable>;
    using iterator = const_iterator;

    // Over rows and texts that outlive the table: `size` rows, sorted by key. The library makes its own four.
    constexpr DictionaryTable(const PackedRow* rows, std::size_t size, const char* text)
        : mRows(rows), mSize(size), mText(text) {}

    // All rows in the order of their keys, and how many they are.
    const_iterator begin() const { return {*this, 0}; }
    const_iterator end() const { return {*this, mSize}; }
    std::size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }

    // The whole key, exactly; end() for one that the table does not hold.
    const_iterator find(std::string_view key) const;
    bool contains(std::string_view key) const { return find(key) != end(); }
    std::size_t count(std::string_view key) const { return contains(key) ? 1 : 0; }

    // The row at that place, which must be less than size().
    value_type ValueAt(std::size_t index) const;

private:
    std::string_view KeyAt(std::size_t index) const;

    const PackedRow* mRows;
    std::size_t mSize;
    const char* mText;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
