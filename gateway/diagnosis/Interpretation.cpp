#include "gateway/diagnosis/Interpretation.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/model/ElementPrecision.h"
#include "gateway/model/ValueEncoder.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::LogicCodeRows;
using ModbusDeviceModel::DeviceProfile::MAX_ELEMENT_REGISTERS;
using ModbusDeviceModel::DeviceProfile::RawView;

namespace {

constexpr auto BIG = ByteOrderingEnum::BIG_ENDIAN_WORDS;
constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;

constexpr double SMALLEST_FLOAT = 1e-6;
constexpr double LARGEST_OF_32_BITS = 1e9;
constexpr double LARGEST_OF_64_BITS = 0x1p48;
constexpr std::uint16_t LARGEST_UNSIGNED_16 = 0xEFFF;
constexpr double LEAST_SIGNED_16 = -0x4000;

struct PlainType {
    std::string_view name;  // in the table of logic codes
    std::size_t registers;  // ANY: of every number
};
constexpr std::size_t ANY = 0;
constexpr PlainType PLAIN_TYPES[] = {
    {"uint16", 1}, {"int16", 1}, {"uint32", 2},  {"int32", 2},  {"float32", 2},        {"uint64", 3},
    {"uint64", 4}, {"int64", 4}, {"float64", 4}, {"text", ANY}, {"text-swapped", ANY},
};

// Null for an unknown type.
const LogicCodeRow* RowOf(std::string_view type) {
    const auto rows = LogicCodeRows();
    const auto row = std::ranges::find(rows, type, &LogicCodeRow::name);
    return row == rows.end() ? nullptr : &*row;
}

// The row that keeps the fraction that scale and offset make of a whole number, if the type has such a sibling.
const LogicCodeRow* RowOf(std::string_view type, double scale, float offset) {
    const bool isWhole = std::trunc(scale) == scale && std::trunc(offset) == offset;
    const LogicCodeRow* sibling = isWhole ? nullptr : RowOf(std::string(type) + "-to-float");
    return sibling ? sibling : RowOf(type);
}

std::string Member(const char* name, double number, NumberPrecision precision) {
    return std::string(", \"") + name + "\": " + NumberText(number, precision);
}

bool IsText(const LogicCodeRow& row) {
    return row.family == Family::TEXT;
}

bool IsFloat(const LogicCodeRow& row) {
    return row.view == RawView::FLOAT || row.view == RawView::DOUBLE;
}

// Whether only the bits of the pattern "first register, then zeros or ones" are set.
bool IsPattern(const EncodedValue::Registers& words) {
    const auto rest = words.begin() + 1;
    return (words[0] == 0xFFFF && std::count(rest, words.end(), 0xFFFF) == words.end() - rest) ||
           (words[0] == 0x8000 && std::count(rest, words.end(), 0) == words.end() - rest);
}

std::string_view WhyNoFloat(double number) {
    if (number != 0 && std::fabs(number) < SMALLEST_FLOAT) {
        return "tiny";
    }
    return std::fabs(number) > LARGEST_OF_32_BITS ? "huge" : "";
}

// `words`: most significant first.
std::string_view WhyNoInteger(double number, const EncodedValue::Registers& words) {
    if (IsPattern(words) && (words.size() > 1 || number != -1)) {
        return "a usual pattern of \"not available\"";
    }
    if (words.size() == 1) {
        return number > LARGEST_UNSIGNED_16 || number < LEAST_SIGNED_16 ? "near the end of its range" : "";
    }
    if (std::fabs(number) > (words.size() == 2 ? LARGEST_OF_32_BITS : LARGEST_OF_64_BITS)) {
        return "huge";
    }
    return number != 0 && words.back() == 0 ? "the least significant register is zero" : "";
}

std::string_view WhyNoText(const std::string& text) {
    constexpr std::string_view REPLACED = "\xEF\xBF\xBD";  // what is not UTF-8, by the decoder
    const auto isControl = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7F;
    };
    if (std::ranges::any_of(text, isControl) || text.find(REPLACED) != text.npos) {
        return "not printable";
    }
    const auto blanks = std::ranges::count(text, ' ');
    return std::ssize(text) - blanks < 2 ? "fewer than two characters" : "";
}

EncodedValue::Registers WithExchangedBytes(EncodedValue::Registers words) {
    for (std::uint16_t& word : words) {
        word = static_cast<std::uint16_t>(word << 8 | word >> 8);
    }
    return words;
}

EncodedValue::Registers WordsOf(const Interpretation& self, Interpretation::Registers registers) {
    const auto own = registers.first(self.count);
    const EncodedValue::Registers words(own.begin(), own.end());
    return self.bytesExchanged ? WithExchangedBytes(words) : words;
}

}  // namespace

std::vector<Interpretation> Interpretation::AllOf(std::size_t count) {
    std::vector<Interpretation> all;
    if (count == 0 || count > MAX_ELEMENT_REGISTERS) {
        return all;
    }
    for (const bool bytesExchanged : {false, true}) {
        for (const auto& [name, registers] : PLAIN_TYPES) {
            if (registers == count || (registers == ANY && !bytesExchanged)) {
                all.push_back({name, static_cast<std::uint8_t>(count), BIG, bytesExchanged});
            }
            if (registers == count && count > 1) {
                all.push_back({name, static_cast<std::uint8_t>(count), LITTLE, bytesExchanged});
            }
        }
    }
    return all;
}

nlohmann::json Interpretation::ValueOf(Registers registers, double scale, float offset) const {
    const LogicCodeRow* row = RowOf(type, scale, offset);
    if (!row || count < row->minRegisters || count > row->maxRegisters || registers.size() < count) {
        return {};
    }
    const auto mask = std::make_shared<std::vector<std::uint8_t>>(std::size_t{2} * count, std::uint8_t{0xFF});
    ElementData element(0, count, mask, scale, nullptr, LogicCodeIdentifier{row->code},
                        ElementData::INVALID_FRAME_INDEX, "", offset, nullptr, order, /*validityCheckEnabled=*/false);
    return DecodeValue(element, /*deviceBigEndian=*/true, WordsOf(*this, registers));
}

std::string_view Interpretation::WhyImplausible(Registers registers) const {
    const nlohmann::json value = ValueOf(registers);
    if (value.is_null()) {
        return "not a value of this type";
    }
    const LogicCodeRow& row = *RowOf(type);
    if (value.is_string()) {
        return IsText(row) ? WhyNoText(value.get_ref<const std::string&>()) : "";
    }
    if (!value.is_number() || IsFloat(row)) {
        return value.is_number() ? WhyNoFloat(value.get<double>()) : "";
    }
    EncodedValue::Registers words = WordsOf(*this, registers);
    if (order == LITTLE) {
        std::ranges::reverse(words);
    }
    return WhyNoInteger(value.get<double>(), words);
}

NumberPrecision Interpretation::GetPrecision(double scale, float offset) const {
    const LogicCodeRow* row = RowOf(type, scale, offset);
    return row ? PrecisionOf(LogicCodeIdentifier{row->code}, scale, offset) : NumberPrecision::DOUBLE;
}

std::string_view Interpretation::GetOrderName() const {
    const LogicCodeRow* row = RowOf(type);
    if (!row || count == 1 || count > 4 || row->wordsAlwaysSwapped) {
        return {};
    }
    return order == LITTLE ? "little" : "big";
}

std::string Interpretation::GetProfileMembers(double scale, float offset) const {
    const LogicCodeRow* row = RowOf(type, scale, offset);
    if (!row) {
        return {};
    }
    if (bytesExchanged) {
        const bool isUnsigned = row->view == RawView::U16 || row->view == RawView::U32 || row->view == RawView::U64;
        return isUnsigned ? "a computation: the \"sum\" of its bytes" : "";
    }
    std::string members = "\"type\": \"" + std::string(row->name) + '"';
    if (count != row->maxRegisters || count == MAX_ELEMENT_REGISTERS) {
        members += ", \"count\": " + std::to_string(count);
    }
    if (const std::string_view name = GetOrderName(); !name.empty()) {
        members += ", \"order\": \"" + std::string(name) + '"';
    }
    members += scale == 1 ? "" : Member("scale", scale, NumberPrecision::DOUBLE);
    return members + (offset == 0 ? "" : Member("offset", offset, NumberPrecision::FLOAT));
}

}  // namespace kzm::ModbusGateway
