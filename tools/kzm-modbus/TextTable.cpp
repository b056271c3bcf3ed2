#include "TextTable.h"

#include <algorithm>
#include <iostream>

#include "Screen.h"
#include "Text.h"

namespace kzm::ModbusTool {

namespace {

Row RowOf(std::vector<std::string> texts, Style style) {
    Row row;
    for (std::string& text : texts) {
        row.push_back({std::move(text), style});
    }
    return row;
}

const char* StartOf(Style style) {
    switch (style) {
        case Style::HEADING:
            return "\x1b[1m";
        case Style::FAINT:
            return "\x1b[2m";
        case Style::WARNING:
            return "\x1b[33m";
        case Style::FAULT:
            return "\x1b[31m";
        case Style::PLAIN:
            break;
    }
    return "";
}

}  // namespace

std::string Styled(const Cell& cell) {
    return cell.style == Style::PLAIN || !UsesColour() ? cell.text : StartOf(cell.style) + cell.text + "\x1b[0m";
}

Row TextRow(std::vector<std::string> texts) {
    return RowOf(std::move(texts), Style::PLAIN);
}

Row HeadingRow(std::vector<std::string> texts) {
    return RowOf(std::move(texts), Style::HEADING);
}

TableLayout::TableLayout(const std::vector<Row>& rows) : mWidths(rows.empty() ? 0 : rows.front().size()) {
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            mWidths[column] = std::max(mWidths[column], WidthOf(row[column].text));
        }
    }
}

std::string TableLayout::LineOf(const Row& row) const {
    std::string line;
    std::size_t blanks = 0;  // held back until the next text
    for (std::size_t column = 0; column < row.size(); ++column) {
        const Cell& cell = row[column];
        const std::size_t width = WidthOf(cell.text);
        const std::size_t padding = std::max(mWidths[column], width) - width;
        if (width == 0) {
            blanks += padding + 2;
            continue;
        }
        line += std::string(blanks + (cell.rightAligned ? padding : 0), ' ') + Styled(cell);
        blanks = 2 + (cell.rightAligned ? 0 : padding);
    }
    return line;
}

std::vector<std::string> LinesOf(const std::vector<Row>& rows) {
    const TableLayout layout(rows);
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        lines.push_back(layout.LineOf(row));
    }
    return lines;
}

void PrintTable(const std::vector<Row>& rows) {
    for (const std::string& line : LinesOf(rows)) {
        std::cout << line << '\n';
    }
}

}  // namespace kzm::ModbusTool
