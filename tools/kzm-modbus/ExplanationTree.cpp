#include "ExplanationTree.h"

#include <algorithm>
#include <filesystem>

#include "ManualAddress.h"
#include "ObjectTable.h"
#include "ReadElements.h"
#include "StepText.h"
#include "Text.h"
#include "gateway/modbus/ExceptionName.h"
#include "gateway/modbus/FunctionName.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::Reason;
using ModbusDeviceModel::DataModel::StepKind;
using Registers = Explanation::Registers;

namespace {

// Where a register has a number of its own in manuals.
std::string InManuals(const Registers& registers) {
    const auto lastAddress = static_cast<std::uint16_t>(registers.address + registers.count - 1);
    const std::string first = ManualText(registers.function, registers.address);
    const std::string last = ManualText(registers.function, lastAddress);
    return " (manual " + first + (first == last ? "" : "-" + last) + ")";
}

std::string AgeOf(const Registers& registers) {
    if (!registers.age) {
        return "never received";
    }
    const std::string limit = " (limit " + AgeText(static_cast<std::int64_t>(registers.limit)) + ")";
    return (*registers.age < 0 ? "from the future" : AgeText(*registers.age) + " old") + limit;
}

std::string FrameText(const Registers& registers) {
    const std::string exception =
        registers.exception == 0 ? "" : "; answered with " + ExceptionName(registers.exception);
    return registers.frame + ", " + AgeOf(registers) + exception;
}

// Collects the rows of an explanation.
class Tree {
public:
    explicit Tree(const TreeForm& form) : mForm(form), mFile(std::filesystem::path(form.profile).filename().string()) {}

    void Add(const Explanation& part, const std::string& heading, std::size_t depth) {
        AddRow(depth, Printable(heading), KindText(part), part.place ? part.place->line : 0, Style::HEADING);
        for (const Explanation& child : part.parts) {
            Add(child, NameOf(child), depth + 1);
        }
        if (part.registers) {
            AddRow(depth + 1, "registers", AddressesOf(*part.registers) + InManuals(*part.registers), 0, Style::PLAIN);
        }
        std::vector<std::string> unchanged;
        for (const Explanation::Step& step : part.steps) {
            AddStep(part, step, depth + 1, unchanged);
        }
        AddUnchanged(part, std::move(unchanged), depth + 1);
        if (const std::string value = ValueText(part); !value.empty()) {
            AddRow(depth + 1, "value", value, 0, Style::PLAIN);
        }
    }

    std::vector<Row> Take() { return std::move(mRows); }

private:
    void AddStep(const Explanation& part, const Explanation::Step& step, std::size_t depth,
                 std::vector<std::string>& unchanged) {
        const bool decides = step.reason != Reason::GOOD;
        const bool isFrame = step.kind == StepKind::FRAME;
        const StepText text =
            isFrame ? StepText{"frame", FrameText(*part.registers), true, decides} : TextOf(part, step);
        if (text.label.empty()) {
            return;
        }
        if (text.changes || decides || mForm.all) {
            const Style usual = text.changes ? Style::PLAIN : Style::FAINT;
            const std::size_t line = text.isPlaced ? step.line : 0;
            AddRow(depth, text.label, text.text, line, decides ? Style::FAULT : usual);
        } else if (step.kind != StepKind::GATHERED) {
            unchanged.push_back(text.label);
        }
    }

    void AddUnchanged(const Explanation& part, std::vector<std::string> unchanged, std::size_t depth) {
        for (const char* const label : part.value.is_null() ? std::vector<const char*>{} : MissingSteps(part)) {
            if (mForm.all) {
                AddRow(depth, label, "none", 0, Style::FAINT);
            } else {
                unchanged.emplace_back(label);
            }
        }
        std::string list;
        for (const std::string& label : unchanged) {
            list += (list.empty() ? "" : ", ") + label;
        }
        if (!list.empty()) {
            AddRow(depth, "no effect", list, 0, Style::FAINT);
        }
    }

    void AddRow(std::size_t depth, const std::string& label, const std::string& text, std::size_t line, Style style) {
        const std::string place = line == 0 ? "" : mFile + ":" + std::to_string(line);
        const bool isHeading = style == Style::HEADING;
        mRows.push_back({{std::string(2 * depth, ' ') + label, style},
                         {Printable(text), isHeading ? Style::PLAIN : style},
                         {Printable(place), Style::FAINT}});
    }

    const TreeForm& mForm;
    std::string mFile;
    std::vector<Row> mRows;
};

}  // namespace

std::string AddressesOf(const Registers& registers) {
    const std::string last = registers.count > 1 ? "-" + std::to_string(registers.address + registers.count - 1) : "";
    return std::string(ModbusGateway::NameOf(registers.function)) + " " + std::to_string(registers.address) + last;
}

std::vector<Row> TreeOf(const Explanation& explanation, const std::string& heading, const TreeForm& form) {
    Tree tree(form);
    tree.Add(explanation, heading, 0);
    return tree.Take();
}

}  // namespace kzm::ModbusTool
