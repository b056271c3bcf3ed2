#include "gateway/json/JsonCursor.h"

#include <algorithm>
#include <charconv>

namespace kzm::ModbusGateway {

std::optional<std::uint64_t> ParseNumber(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* begin = text.data() + (hexadecimal ? 2 : 0);
    const char* end = text.data() + text.size();
    std::uint64_t number{};
    const auto result = std::from_chars(begin, end, number, hexadecimal ? 16 : 10);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

JsonCursor JsonCursor::At(const std::string& member) const {
    static const nlohmann::json NOTHING;
    const auto found = mValue->find(member);
    return {*this, member, found == mValue->end() ? NOTHING : *found};
}

std::string JsonCursor::Text() const {
    return mValue->is_string() ? mValue->get<std::string>() : std::string();
}

std::optional<std::uint64_t> JsonCursor::Number() const {
    if (mValue->is_number_float()) {  // 3.0 is 3 to a JSON Schema, too
        const auto number = mValue->get<double>();
        const auto whole = static_cast<std::uint64_t>(std::clamp(number, 0.0, 0x1p53));
        return static_cast<double>(whole) == number ? std::optional(whole) : std::nullopt;
    }
    return mValue->is_number_unsigned() ? mValue->get<std::uint64_t>() : ParseNumber(Text());
}

void JsonCursor::Report(Problem::Severity severity, std::string message) const {
    mProblems->push_back({severity, GetLine(), mPointer, std::move(message)});
}

}  // namespace kzm::ModbusGateway
