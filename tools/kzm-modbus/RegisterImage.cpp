#include "RegisterImage.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ManualAddress.h"
#include "Text.h"
#include "gateway/cache/FrameAddresses.h"
#include "gateway/modbus/FunctionName.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::ModbusFunctionCode;
using nlohmann::json;

namespace {

constexpr auto BIG = ByteOrderingEnum::BIG_ENDIAN_WORDS;
constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;

// The two characters of a register, "." for one that is not printable.
std::string CharactersOf(std::uint16_t word) {
    std::string text;
    for (const unsigned byte : {unsigned{word} >> 8, unsigned{word} & 0xFF}) {
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    }
    return text;
}

std::string TextOf(const json& value, NumberPrecision precision) {
    if (value.is_number_float()) {
        return NumberText(value.get<double>(), precision);
    }
    return value.is_null() ? "-" : Printable(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

// "*" marks what may well be meant.
Cell CellOf(const Interpretation& way, const std::vector<std::uint16_t>& words, Style style) {
    const bool plausible = way.WhyImplausible(words).empty();
    const std::string text = TextOf(way.ValueOf(words), way.GetPrecision());
    const Style faint = style == Style::PLAIN ? Style::FAINT : style;
    return plausible ? Cell{"*" + text, style, /*rightAligned=*/true} : Cell{text, faint, /*rightAligned=*/true};
}

// Signed where only that is plausible.
Interpretation IntegerOf(const std::vector<std::uint16_t>& words, ByteOrderingEnum order) {
    const Interpretation isUnsigned{"uint32", 2, order};
    const Interpretation isSigned{"int32", 2, order};
    const bool onlySigned = !isUnsigned.WhyImplausible(words).empty() && isSigned.WhyImplausible(words).empty();
    return onlySigned ? isSigned : isUnsigned;
}

json JsonOf(const Interpretation& way, const std::vector<std::uint16_t>& words, double scale, float offset) {
    json value = way.ValueOf(words, scale, offset);
    if (value.is_number_float()) {
        value = RoundedTo(value.get<double>(), way.GetPrecision(scale, offset));
    }
    json result{{"type", way.type}, {"value", value}, {"plausible", way.WhyImplausible(words).empty()}};
    if (const auto order = way.GetOrderName(); !order.empty()) {
        result["order"] = order;
    }
    return result;
}

}  // namespace

bool RegisterImage::IsOfBits() const {
    return mFunctionCode == ModbusFunctionCode::READ_COILS || mFunctionCode == ModbusFunctionCode::READ_DISCRETE_INPUTS;
}

void RegisterImage::Take(const RegisterCache& cache, const DeviceFrames& device) {
    for (std::size_t index = 0; index < device.frames.size(); ++index) {
        const auto words = cache.GetFrame(static_cast<std::uint8_t>(index)).registers;
        const auto addresses = AddressesOf(device.frames[index]);
        for (std::size_t i = 0; i < words.size(); ++i) {
            Register& own = mRegisters.at(addresses[i] - std::size_t{mFirst});
            own.hasChanged = own.value && *own.value != words[i];
            own.changes += own.hasChanged ? 1 : 0;
            own.value = words[i];
        }
    }
}

RegisterImage::Words RegisterImage::From(std::size_t offset, std::size_t count) const {
    Words words;
    for (; words.size() < count && offset < mRegisters.size() && mRegisters[offset].value; ++offset) {
        words.push_back(*mRegisters[offset].value);
    }
    return words;
}

std::vector<RegisterImage::Line> RegisterImage::GetLines(const Look& look, bool changed) const {
    std::vector<Line> lines;
    const std::size_t step = look.type ? look.type->count : 1;
    for (std::size_t offset = 0; offset + step <= mRegisters.size(); offset += step) {
        Line line{offset, From(offset, step), false, 0};
        for (std::size_t i = offset; i < offset + step; ++i) {
            line.hasChanged = line.hasChanged || mRegisters[i].hasChanged;
            line.changes = std::max(line.changes, mRegisters[i].changes);
        }
        if (line.words.size() == step && (line.hasChanged || !changed)) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

void RegisterImage::AddAll(Row& row, std::size_t offset) const {
    const Words words = From(offset, 2);
    const Style style = mRegisters[offset].hasChanged ? Style::WARNING : Style::PLAIN;
    row.push_back(CellOf({"uint16", 1}, words, style));
    row.push_back(CellOf({"int16", 1}, words, style));
    row.push_back({CharactersOf(words[0]), style});
    if (words.size() == 2) {
        for (const ByteOrderingEnum order : {BIG, LITTLE}) {
            row.push_back(CellOf(IntegerOf(words, order), words, Style::PLAIN));
            row.push_back(CellOf({"float32", 2, order}, words, Style::PLAIN));
        }
    }
}

void RegisterImage::AddTyped(Row& row, const Line& line, const Look& look) const {
    const json value = look.type->ValueOf(line.words, look.scale, look.offset);
    const std::string_view why = look.type->WhyImplausible(line.words);
    const Style style = why.empty() ? Style::PLAIN : Style::FAINT;
    row.push_back({TextOf(value, look.type->GetPrecision(look.scale, look.offset)),
                   line.hasChanged ? Style::WARNING : style, value.is_number()});
    row.push_back({why.empty() ? "" : "implausible: " + std::string(why), Style::FAINT});
}

Row RegisterImage::RowOf(const Line& line, const Look& look) const {
    const auto address = static_cast<std::uint16_t>(mFirst + line.offset);
    const Style style = line.hasChanged ? Style::WARNING : Style::PLAIN;
    Row row{{std::to_string(address), Style::PLAIN, /*rightAligned=*/true}};
    if (look.manual) {
        row.push_back({ManualText(mFunctionCode, address)});
    }
    row.push_back({IsOfBits() ? std::to_string(line.words[0]) : HexOf(line.words), style});
    if (look.type) {
        AddTyped(row, line, look);
    } else if (!IsOfBits()) {
        AddAll(row, line.offset);
    }
    return row;
}

std::vector<Row> RegisterImage::GetRows(const Look& look, bool changed) const {
    std::vector<std::string> headings{"ADDRESS"};
    if (look.manual) {
        headings.push_back("MANUAL");
    }
    if (IsOfBits()) {
        headings.push_back("VALUE");
    } else if (look.type) {
        headings.insert(headings.end(), {"HEX", "VALUE", ""});
    } else {
        headings.insert(headings.end(), {"HEX", "UNSIGNED", "SIGNED", "TEXT", "INT32 BIG", "FLOAT32 BIG",
                                         "INT32 LITTLE", "FLOAT32 LITTLE"});
    }
    const std::size_t width = headings.size();
    if (look.changes) {
        headings.push_back("CHANGES");
    }
    std::vector<Row> rows{HeadingRow(headings)};
    for (const Line& line : GetLines(look, changed)) {
        rows.push_back(RowOf(line, look));
        if (look.changes) {
            rows.back().resize(width);
            rows.back().push_back({std::to_string(line.changes), Style::PLAIN, /*rightAligned=*/true});
        }
    }
    return rows.size() > 1 ? rows : std::vector<Row>{};
}

json RegisterImage::JsonOf(const Line& line, const Look& look) const {
    const auto address = static_cast<std::uint16_t>(mFirst + line.offset);
    json result{{"function", NameOf(mFunctionCode)}, {"address", address}};
    if (look.manual) {
        result["manual"] = ManualText(mFunctionCode, address);
    }
    if (IsOfBits()) {
        result["value"] = line.words[0];
        return result;
    }
    result["hex"] = HexOf(line.words);
    if (look.type) {
        result.update(ModbusTool::JsonOf(*look.type, line.words, look.scale, look.offset));
        return result;
    }
    const Words words = From(line.offset, 2);
    for (std::size_t count = 1; count <= words.size(); ++count) {
        for (const Interpretation& way : Interpretation::AllOf(count)) {
            if (!way.bytesExchanged) {
                result["values"].push_back(ModbusTool::JsonOf(way, words, 1, 0));
            }
        }
    }
    return result;
}

std::vector<json> RegisterImage::GetJson(const Look& look, bool changed) const {
    std::vector<json> lines;
    for (const Line& line : GetLines(look, changed)) {
        lines.push_back(JsonOf(line, look));
        if (look.changes) {
            lines.back()["changes"] = line.changes;
        }
    }
    return lines;
}

}  // namespace kzm::ModbusTool
