#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kzm::ModbusTool {

// How a text looks on a terminal; without one, and if the environment sets NO_COLOR, all look alike.
enum class Style { PLAIN, HEADING, FAINT, WARNING, FAULT };

// One cell of a text table. Text that does not come from the program itself must be Printable.
struct Cell {
    std::string text = {};
    Style style = Style::PLAIN;
    bool rightAligned = false;
};
using Row = std::vector<Cell>;

// A row of plain texts, and one of headings.
Row TextRow(std::vector<std::string> texts);
Row HeadingRow(std::vector<std::string> texts);

// The text of a cell as it goes to standard output.
std::string Styled(const Cell& cell);

// Column widths of a text table, with two blanks between columns and no trailing blanks.
class TableLayout {
public:
    // As wide as the widest cell of each column. No row may be longer than the first.
    explicit TableLayout(const std::vector<Row>& rows);

    // A row as a line, without line end. A cell that is too wide shifts those after it.
    std::string LineOf(const Row& row) const;

private:
    std::vector<std::size_t> mWidths;
};

// The lines of a table, without line ends.
std::vector<std::string> LinesOf(const std::vector<Row>& rows);

// Writes a table to standard output.
void PrintTable(const std::vector<Row>& rows);

}  // namespace kzm::ModbusTool
