#pragma once

#include <string>
#include <vector>

namespace kzm::ModbusTool {

// Rows of texts below one another, as wide as the widest of those that it was made with; nothing follows a row's last
// text.
class Columns {
public:
    using Row = std::vector<std::string>;

    // No row is longer than the first.
    explicit Columns(const std::vector<Row>& rows);

    // A row as a line, without line end. A text that is too wide moves what follows it.
    std::string LineOf(const Row& row) const;

private:
    std::vector<std::size_t> mWidths;
};

// Write to standard output: headings, bold on a terminal; headings, which are the first row, and the rows below them.
void PrintHeading(const Columns& columns, const Columns::Row& row);
void PrintRows(const std::vector<Columns::Row>& rows);

}  // namespace kzm::ModbusTool
