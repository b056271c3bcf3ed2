#pragma once

#include <cstddef>
#include <utility>

#include "dictionary/AttributeSources.h"
#include "dictionary/DictionaryText.h"
#include "dictionary/SortedConstants.h"
#include "dictionary/StructureReference.h"

namespace kz::orba::VortaExtensionModbus::Device {

// What the dictionary knows about one element.
struct DictionaryEntry {
    AttributeSources sources;      // which device elements feed it
    DictionaryText name;           // of the data-model object, e.g. "ElectricalMeasurement.RmsMinCurrentPhsA"
    DictionaryText unit;           // of the value, e.g. "A"; empty if it has none
    DictionaryText className;      // e.g. "$iot.measurement.NumericalMeasurementValue<Float>"
    StructureReference structure;  // of the data-model object
};

// One table of the dictionary: a read-only map from element key to entry, in byte order of the keys. Entries are
// constants of the library. Thread-safe.
class DictionaryTable : public SortedConstants<DictionaryTable, std::pair<DictionaryText, DictionaryEntry>> {
public:
    // As of a standard map.
    using mapped_type = DictionaryEntry;

    // `name`: the kind of the elements. `rows`: `size` of them in byte order of the keys, each key once; they must
    // outlive the table and what is read from it.
    constexpr DictionaryTable(DictionaryText name, const value_type* rows, std::size_t size)
        : mRows(rows), mSize(size), mName(name) {}

    // "alarm", "measurement", "protection" or "circuit-breaker".
    constexpr DictionaryText GetName() const { return mName; }

    // All rows in the order of their keys, and how many they are.
    constexpr const value_type* data() const { return mRows; }
    constexpr std::size_t size() const { return mSize; }

private:
    const value_type* mRows;
    std::size_t mSize;
    DictionaryText mName;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
