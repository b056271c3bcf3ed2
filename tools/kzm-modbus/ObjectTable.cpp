#include "ObjectTable.h"

#include <algorithm>
#include <array>

#include "Text.h"

namespace kzm::ModbusTool {

using nlohmann::json;

namespace {

constexpr const char* RED = "\x1b[31m";
constexpr const char* YELLOW = "\x1b[33m";
constexpr const char* BOLD = "\x1b[1m";
constexpr const char* DIM = "\x1b[2m";
constexpr const char* PLAIN = "\x1b[0m";

constexpr std::size_t ALIAS_COLUMN = 1;
constexpr std::size_t COLUMNS = 6;

struct Cell {
    std::string text;
    const char* style = nullptr;
    bool rightAligned = false;
};
using Row = std::array<Cell, COLUMNS>;

std::string AttributeOf(const json& attributes, const char* name) {
    return attributes.contains(name) && !attributes[name].is_null() ? TextOf(attributes[name]) : "";
}

const char* StyleOfQuality(const std::string& quality) {
    return quality == "Bad" ? RED : quality == "Questionable" ? YELLOW : nullptr;
}

Row RowOf(const ObjectReading& reading, const ObjectPart& part) {
    const auto& object = *reading.object;
    const std::string quality = AttributeOf(part.attributes, "quality");
    const bool number = part.attributes.contains("value") && part.attributes["value"].is_number();
    return {Cell{Printable(object.name) + (part.path.empty() ? "" : ": " + Printable(part.path))},
            Cell{Printable(object.alias)},
            part.why.empty()
                ? Cell{part.attributes.contains("value") ? TextOf(part.attributes["value"]) : "", nullptr, number}
                : Cell{Printable(part.why), DIM},
            Cell{Printable(part.attributes.value("unit", object.unit))},
            Cell{quality, StyleOfQuality(quality)},
            Cell{AttributeOf(part.attributes, "datetime")}};
}

Row Headings() {
    return {Cell{"NAME", BOLD}, Cell{"ALIAS", BOLD},   Cell{"VALUE", BOLD},
            Cell{"UNIT", BOLD}, Cell{"QUALITY", BOLD}, Cell{"DATE-TIME", BOLD}};
}

// 0 for a column that is left out.
std::array<std::size_t, COLUMNS> WidthsOf(const std::vector<Row>& rows) {
    std::array<std::size_t, COLUMNS> widths{};
    for (std::size_t column = 0; column < COLUMNS; ++column) {
        for (const Row& row : rows) {
            widths[column] = std::max(widths[column], WidthOf(row[column].text));
        }
    }
    const bool aliases =
        std::any_of(rows.begin() + 1, rows.end(), [](const Row& row) { return !row[ALIAS_COLUMN].text.empty(); });
    widths[ALIAS_COLUMN] = aliases ? widths[ALIAS_COLUMN] : 0;
    return widths;
}

std::string LineOf(const Row& row, const std::array<std::size_t, COLUMNS>& widths, bool colour) {
    std::string line;
    std::size_t missing = 0;  // blanks that wait for the next text, so that none end the line
    for (std::size_t column = 0; column < COLUMNS; ++column) {
        const Cell& cell = row[column];
        if (widths[column] == 0) {
            continue;
        }
        const std::size_t padding = widths[column] - WidthOf(cell.text);
        if (!cell.text.empty()) {
            line += std::string(missing + (cell.rightAligned ? padding : 0), ' ');
            line += colour && cell.style ? cell.style + cell.text + PLAIN : cell.text;
            missing = 0;
        }
        missing += 2 + (cell.rightAligned ? 0 : cell.text.empty() ? widths[column] : padding);
    }
    return line;
}

}  // namespace

std::string TextOf(const json& value) {
    if (value.is_string()) {
        return Printable(value.get_ref<const std::string&>());
    }
    return value.is_number_float() ? FormatNumber(value.get<double>())
                                   : Printable(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

std::vector<std::string> TableOf(const std::vector<ObjectReading>& readings, bool colour) {
    std::vector<Row> rows{Headings()};
    for (const ObjectReading& reading : readings) {
        for (const ObjectPart& part : reading.parts) {
            rows.push_back(RowOf(reading, part));
        }
    }
    const auto widths = WidthsOf(rows);
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        lines.push_back(LineOf(row, widths, colour));
    }
    return lines;
}

}  // namespace kzm::ModbusTool
