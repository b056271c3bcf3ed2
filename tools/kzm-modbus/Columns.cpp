#include "Columns.h"

#include <algorithm>
#include <iostream>

#include "Screen.h"
#include "Text.h"

namespace kzm::ModbusTool {

Columns::Columns(const std::vector<Row>& rows) : mWidths(rows.front().size()) {
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            mWidths[column] = std::max(mWidths[column], WidthOf(row[column]));
        }
    }
}

std::string Columns::LineOf(const Row& row) const {
    std::string line;
    std::size_t blanks = 0;
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::size_t width = WidthOf(row[column]);
        if (width > 0) {
            line += std::string(blanks, ' ') + row[column];
            blanks = 0;
        }
        blanks += std::max(mWidths[column], width) - width + 2;
    }
    return line;
}

void PrintHeading(const Columns& columns, const Columns::Row& row) {
    std::cout << (UsesColour() ? "\x1b[1m" + columns.LineOf(row) + "\x1b[0m" : columns.LineOf(row)) << '\n';
}

void PrintRows(const std::vector<Columns::Row>& rows) {
    const Columns columns(rows);
    PrintHeading(columns, rows.front());
    for (std::size_t i = 1; i < rows.size(); ++i) {
        std::cout << columns.LineOf(rows[i]) << '\n';
    }
}

}  // namespace kzm::ModbusTool
