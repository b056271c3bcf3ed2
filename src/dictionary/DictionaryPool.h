#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "dictionary/AlarmRows.h"
#include "dictionary/CircuitBreakerRows.h"
#include "dictionary/ClassNames.h"
#include "dictionary/DictionaryTable.h"
#include "dictionary/MeasurementRows.h"
#include "dictionary/ProtectionRows.h"
#include "dictionary/TextPool.h"

namespace kz::orba::VortaExtensionModbus::Device {

namespace Rows {

struct Table {
    std::string_view name;
    std::string_view classPrefix;
    std::span<const DictionaryRow> rows;
};

inline constexpr Table TABLES[] = {
    {"alarm", ClassNames::ALARM_PREFIX, ALARMS},
    {"measurement", ClassNames::MEASUREMENT_PREFIX, MEASUREMENTS},
    {"protection", ClassNames::PROTECTION_PREFIX, PROTECTIONS},
    {"circuit-breaker", ClassNames::CIRCUIT_BREAKER_PREFIX, CIRCUIT_BREAKERS},
};

// The sum of a figure over the rows of all tables.
template <typename Figure>
constexpr std::size_t Sum(Figure figure) {
    std::size_t sum = 0;
    for (const Table& table : TABLES) {
        for (const DictionaryRow& row : table.rows) {
            sum += figure(row);
        }
    }
    return sum;
}

}  // namespace Rows

// Packs the dictionary at compile time into numbers and one array of characters, so that all processes share it and
// loading the library adjusts nothing in it.
class DictionaryPool {
public:
    constexpr DictionaryPool() {
        AddClasses();
        for (std::size_t i = 0; i < std::size(Rows::TABLES); ++i) {
            AddTable(Rows::TABLES[i], mTables[i]);
        }
    }

    constexpr const auto& GetTexts() const { return mTexts; }
    constexpr const auto& GetClasses() const { return mClasses; }  // in the order of ClassNames::LISTS
    constexpr const auto& GetRows() const { return mRows; }        // of all tables
    constexpr const auto& GetSources() const { return mSources; }

    // The table of that name over a copy of the rows. The name must be one of Rows::TABLES.
    constexpr DictionaryTable GetTable(std::string_view name, const DictionaryTable::value_type* rows) const {
        for (const Place& table : mTables) {
            if (mTexts.View(table.name) == name) {
                return {table.name, rows + table.begin, table.size};
            }
        }
        throw "no such table";
    }

private:
    struct Place {
        DictionaryText name;
        std::size_t begin = 0;
        std::size_t size = 0;
    };

    constexpr void AddClasses() {
        std::size_t index = 0;
        for (const ClassNames::List& list : ClassNames::LISTS) {
            for (const std::string_view name : list.names) {
                mClasses[index++] = mTexts.Add(list.prefix, name);
            }
        }
    }

    constexpr void AddTable(const Rows::Table& table, Place& place) {
        place = {mTexts.Add(table.name), mRowCount, table.rows.size()};
        for (const DictionaryRow& row : table.rows) {
            const DictionaryText key = mTexts.Add(row.key);
            mRows[mRowCount].first = key;
            mRows[mRowCount++].second = {AddSources(row, key), mTexts.Add(row.name), mTexts.Share(row.unit),
                                         FindClass(row, table.classPrefix), StructureReference(row.structure)};
        }
    }

    constexpr AttributeSources AddSources(const DictionaryRow& row, DictionaryText key) {
        const std::size_t begin = mSourceCount;
        for (const RowSources::Source& source : row.GetSources()) {
            mSources[mSourceCount++] = {mTexts.Share(source.path), mTexts.AddOrPartOf(key, row.key, source.id)};
        }
        return {begin, mSourceCount - begin};
    }

    constexpr DictionaryText FindClass(const DictionaryRow& row, std::string_view prefix) const {
        const std::string_view end = row.GetClassEnd();
        const std::size_t size = row.className.size() + end.size();
        std::size_t index = 0;
        for (const ClassNames::List& list : ClassNames::LISTS) {
            for (std::size_t i = 0; list.prefix == prefix && i < list.names.size(); ++i) {
                const std::string_view name = list.names[i];
                if (name.size() == size && name.starts_with(row.className) && name.ends_with(end)) {
                    return mClasses[index + i];
                }
            }
            index += list.names.size();
        }
        throw "the class of a row is not in ClassNames.h";
    }

    TextPool mTexts;
    std::array<DictionaryText, ClassNames::COUNT> mClasses{};
    std::array<DictionaryTable::value_type, Rows::Sum([](const DictionaryRow&) { return 1U; })> mRows{};
    std::size_t mRowCount = 0;
    std::array<AttributeSource, Rows::Sum([](const DictionaryRow& row) { return row.GetSources().size(); })> mSources{};
    std::size_t mSourceCount = 0;
    std::array<Place, std::size(Rows::TABLES)> mTables{};
};

}  // namespace kz::orba::VortaExtensionModbus::Device
