#include "dictionary/DictionaryTable.h"

#include "dictionary/DictionaryPool.h"
#include "dictionary/FindIndex.h"

namespace kz::orba::VortaExtensionModbus::Device {

DictionaryTable::const_iterator DictionaryTable::find(std::string_view key) const {
    return {*this, FindIndex(key, mSize, [this](std::size_t index) { return KeyAt(index); })};
}

std::string_view DictionaryTable::KeyAt(std::size_t index) const {
    return {mText + mRows[index].text, mRows[index].keySize};
}

DictionaryTable::value_type DictionaryTable::ValueAt(std::size_t index) const {
    const PackedRow& row = mRows[index];
    const char* text = mText + row.text;
    const auto take = [&](std::size_t size) { return std::string_view(std::exchange(text, text + size), size); };
    const std::string_view key = take(row.keySize);
    const std::string_view name = take(row.nameSize);
    const std::string_view sources = take(row.sourcesSize);
    const std::string_view unit = take(row.unitSize);
    return {key, {ParseSources(key, sources), name, unit, ClassNameAt(row.classIndex), row.structure}};
}

}  // namespace kz::orba::VortaExtensionModbus::Device
