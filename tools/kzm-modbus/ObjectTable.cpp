#include "ObjectTable.h"

#include <algorithm>

#include "Text.h"
#include "TextTable.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusTool {

using nlohmann::json;

namespace {

// Those that are left out if no object fills them.
constexpr std::size_t OPTIONAL_COLUMNS[] = {7, 6, 1};

std::string AttributeOf(const json& attributes, const char* name) {
    return attributes.contains(name) && !attributes[name].is_null() ? TextOf(attributes[name]) : "";
}

Style StyleOfQuality(const std::string& quality) {
    if (quality == "Bad") {
        return Style::FAULT;
    }
    return quality == "Questionable" ? Style::WARNING : Style::PLAIN;
}

Cell ValueOf(const ObjectPart& part) {
    if (!part.why.empty()) {
        return {Printable(part.why), Style::FAINT};
    }
    const bool isNumber = part.attributes.contains("value") && part.attributes["value"].is_number();
    return {part.attributes.contains("value") ? TextOf(part.attributes["value"]) : "", Style::PLAIN, isNumber};
}

// A missing value says how old its frame is, if that is why.
Cell AgeOf(const ObjectPart& part, const TableForm& form) {
    const bool isOld = part.why.empty() && part.age > 2 * form.round.count();
    if (!part.age || !(form.raw || isOld)) {
        return {};
    }
    return {AgeText(*part.age), isOld ? Style::WARNING : Style::PLAIN, /*rightAligned=*/true};
}

Row RowOf(const ObjectReading& reading, const ObjectPart& part, const TableForm& form) {
    const auto& object = *reading.object;
    const std::string quality = AttributeOf(part.attributes, "quality");
    const std::string path = part.path.empty() ? "" : ": " + Printable(part.path);
    return {{Printable(object.name) + path},
            {Printable(object.alias)},
            ValueOf(part),
            {Printable(part.attributes.value("unit", object.unit))},
            {quality, StyleOfQuality(quality)},
            {AttributeOf(part.attributes, "datetime")},
            {form.raw ? part.registers : ""},
            AgeOf(part, form)};
}

// Whether a column has nothing below its heading.
bool IsEmpty(const std::vector<Row>& rows, std::size_t column) {
    return std::all_of(rows.begin() + 1, rows.end(), [column](const Row& row) { return row[column].text.empty(); });
}

void Erase(std::vector<Row>& rows, std::size_t column) {
    for (Row& row : rows) {
        row.erase(row.begin() + static_cast<Row::difference_type>(column));
    }
}

}  // namespace

std::string TextOf(const json& value) {
    if (value.is_string()) {
        return Printable(value.get_ref<const std::string&>());
    }
    return value.is_number_float() ? NumberText(value.get<double>(), ModbusGateway::NumberPrecision::DOUBLE)
                                   : Printable(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

std::string AgeText(std::int64_t milliseconds) {
    const auto tenths = static_cast<double>(milliseconds / 100);
    return NumberText(tenths / 10, ModbusGateway::NumberPrecision::DIGITS_15) + " s";
}

std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings, const TableForm& form) {
    std::vector<Row> rows{HeadingRow({"NAME", "ALIAS", "VALUE", "UNIT", "QUALITY", "DATE-TIME", "REGISTERS", "AGE"})};
    for (const ObjectReading& reading : readings) {
        for (const ObjectPart& part : reading.parts) {
            rows.push_back(RowOf(reading, part, form));
        }
    }
    for (const std::size_t column : OPTIONAL_COLUMNS) {
        if (IsEmpty(rows, column)) {
            Erase(rows, column);
        }
    }
    return LinesOf(rows);
}

}  // namespace kzm::ModbusTool
