#include "ObjectTable.h"

#include <algorithm>

#include "Text.h"
#include "TextTable.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusTool {

using nlohmann::json;

namespace {

constexpr std::size_t ALIAS_COLUMN = 1;

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

Row RowOf(const ObjectReading& reading, const ObjectPart& part) {
    const auto& object = *reading.object;
    const std::string quality = AttributeOf(part.attributes, "quality");
    return {{Printable(object.name) + (part.path.empty() ? "" : ": " + Printable(part.path))},
            {Printable(object.alias)},
            ValueOf(part),
            {Printable(part.attributes.value("unit", object.unit))},
            {quality, StyleOfQuality(quality)},
            {AttributeOf(part.attributes, "datetime")}};
}

bool HasAlias(const ObjectReading& reading) {
    return !reading.object->alias.empty();
}

}  // namespace

std::string TextOf(const json& value) {
    if (value.is_string()) {
        return Printable(value.get_ref<const std::string&>());
    }
    return value.is_number_float() ? NumberText(value.get<double>(), ModbusGateway::NumberPrecision::DOUBLE)
                                   : Printable(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings) {
    std::vector<Row> rows{HeadingRow({"NAME", "ALIAS", "VALUE", "UNIT", "QUALITY", "DATE-TIME"})};
    for (const ObjectReading& reading : readings) {
        for (const ObjectPart& part : reading.parts) {
            rows.push_back(RowOf(reading, part));
        }
    }
    if (std::none_of(readings.begin(), readings.end(), HasAlias)) {
        for (Row& row : rows) {
            row.erase(row.begin() + ALIAS_COLUMN);
        }
    }
    return LinesOf(rows);
}

}  // namespace kzm::ModbusTool
