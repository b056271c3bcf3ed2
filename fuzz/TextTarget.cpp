// Makes UTF-8 of any bytes, and reads texts out of registers.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "fuzz/ElementInput.h"

namespace kzm::ModbusFuzz {

namespace {

using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::ElementData;

constexpr std::uint8_t TEXT_CODES[] = {41, 43, 62};

void RequireWellFormed(std::string text) {
    unsigned length = 1;
    for (unsigned position = 0; position < text.size(); position += length) {
        Require(ElementData::CheckUTF8Validity(text, position, length), "what was repaired is well-formed");
        Require(length >= 1 && length <= 4 && position + length <= text.size(), "a sequence ends within the text");
    }
}

void Repair(const std::string& text) {
    std::string repaired = text;
    ElementData::SanitiseUTF8Sequence(repaired);
    RequireWellFormed(repaired);
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    Require(!isAscii || repaired == text, "ASCII stays");
    std::string again = repaired;
    ElementData::SanitiseUTF8Sequence(again);
    Require(again == repaired, "repairing twice is repairing once");
}

void DecodeInElement(std::uint8_t code, const Bytes& mask, Bytes bytes) {
    ElementData element(100, 127, std::make_shared<Bytes>(mask), 1, nullptr, LogicCodeIdentifier{code}, 0, "path", 0,
                        nullptr, ModbusDeviceModel::ByteOrderingEnum::BIG_ENDIAN_WORDS, /*validityCheckEnabled=*/false);
    bool invalid = false;
    nlohmann::json value;
    if (element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), /*deviceBigEndian=*/true, 2000, invalid, value,
                      nullptr)) {
        Require(!invalid && value.is_string(), "any bytes are a text");
        const auto& text = value.get_ref<const std::string&>();
        Require(text.find('\0') == std::string::npos && text.size() <= 3 * bytes.size(), "a text ends at its NUL");
        RequireWellFormed(text);
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const auto code = input.PickValueInArray(TEXT_CODES);
    const bool masked = input.ConsumeBool();
    const Bytes mask = masked ? input.UpToBytes(260) : Bytes(260, std::uint8_t{0xFF});
    const Bytes bytes = input.ConsumeRemainingBytes<std::uint8_t>();
    DecodeInElement(code, mask, bytes);
    Repair(std::string(bytes.begin(), bytes.end()));
    return 0;
}
