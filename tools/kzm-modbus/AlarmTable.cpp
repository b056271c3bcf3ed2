#include "AlarmTable.h"

#include "ObjectTable.h"
#include "ReadElements.h"
#include "Text.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

// The registers of an alarm and the age of the oldest frame that it used.
Row RawCells(const Explanation& explanation) {
    const std::uint64_t received = ReceivedOf(explanation);
    const auto age = static_cast<std::int64_t>(DateTime::DateTime::GetRealTimeInMilliseconds() - received);
    return TextRow({RegistersOf(explanation), received == 0 ? "" : AgeText(age)});
}

}  // namespace

Row AlarmHeadings(bool raw) {
    std::vector<std::string> texts{"TIME",        "ALARM", "ALIAS", "STATE",       "QUALITY",
                                   "CRITICALITY", "KIND",  "TYPE",  "DESCRIPTION", "WHY UNKNOWN"};
    if (raw) {
        texts.insert(texts.end(), {"REGISTERS", "AGE"});
    }
    return HeadingRow(texts);
}

Row RowOf(const AlarmReading& reading, const std::string& time, bool raw) {
    const std::string state = reading.TextOf("state", "value");
    const std::string shownState = state.empty() ? "unknown" : state;
    Row row = TextRow({time, reading.alarm->element->GetName(), reading.alarm->alias, shownState,
                       reading.TextOf("state", "quality"), reading.TextOf("criticality", "value"),
                       reading.momentary ? "momentary" : "lasting", reading.TextOf("type", "value"),
                       reading.alarm->element->GetDescription(), reading.why});
    for (Cell& cell : row) {
        cell.text = Printable(cell.text);
    }
    for (const Cell& cell : raw ? RawCells(reading.explanation) : Row{}) {
        row.push_back(cell);
    }
    return row;
}

}  // namespace kzm::ModbusTool
