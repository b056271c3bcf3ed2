// Puts values into a write request, and encodes texts as values of elements.
#include "DeviceProfile/FrameDataValue.h"
#include "fuzz/ElementInput.h"
#include "gateway/model/ValueEncoder.h"

namespace kzm::ModbusFuzz {

namespace {

using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceProfile::FrameDataValue;
using namespace ModbusGateway;
using Registers = std::vector<std::uint16_t>;

Registers TakeRegisters(Input& input) {
    Registers registers;
    for (auto count = input.UpTo(20U); count > 0; --count) {
        registers.push_back(input.ConsumeIntegral<std::uint16_t>());
    }
    return registers;
}

void SetValues(FrameDataValue& frame, Input& input) {
    const Registers before = frame.mValues;
    const auto address = input.ConsumeIntegral<std::uint16_t>();
    const Registers values = TakeRegisters(input);
    const Bytes mask = input.UpToBytes(44);
    const bool masked = input.ConsumeBool();
    const bool isSet = frame.SetValue(address, values.empty() ? nullptr : values.data(),
                                      static_cast<std::uint16_t>(values.size()), masked ? &mask : nullptr);
    const bool fits =
        address >= frame.mStartAddress && std::size_t{address} - frame.mStartAddress + values.size() <= before.size();
    Require(isSet == (fits && !values.empty()), "what is within the frame is set");
    Require(frame.mValues.size() == before.size() && (isSet || frame.mValues == before),
            "what is not set changes nothing");
    for (std::size_t i = 0; i < before.size(); ++i) {
        Require(!masked || (before[i] & ~frame.mValues[i]) == 0, "a mask only adds bits");
    }
    Require(frame.SetValue(address, 7) ==
                (address >= frame.mStartAddress && address - frame.mStartAddress < static_cast<int>(before.size())),
            "one register within the frame is set");
}

void RequireWithinMask(const ElementInput& parts, const EncodedValue& encoded) {
    Require(encoded.registers.size() == parts.registers && encoded.mask.size() == parts.registers,
            "a value takes the element's registers");
    for (std::size_t i = 0; i < encoded.registers.size(); ++i) {
        Require((encoded.registers[i] & ~encoded.mask[i]) == 0, "a value stays within the mask");
    }
}

void Encode(const ElementInput& parts, const std::string& text) {
    auto element = parts.MakeElement();
    try {
        const EncodedValue encoded = EncodeValue(element, parts.bigEndian, text);
        RequireWithinMask(parts, encoded);
        encoded.CheckReadBack(DecodeValue(element, parts.bigEndian, encoded.registers));
    } catch (const CannotEncode&) {
    } catch (const std::invalid_argument&) {
        Require(parts.pattern && parts.checksPattern, "only a pattern can be faulty");
    }
}

// What was read can be written, and is then read again.
void EncodeDecoded(const ElementInput& parts) {
    auto element = parts.MakeElement();
    Bytes bytes = parts.bytes;
    bool invalid = false;
    nlohmann::json value;
    try {
        element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), parts.bigEndian, 2000, invalid, value,
                      nullptr);
    } catch (const std::invalid_argument&) {
    }
    Encode(parts, value.is_string() ? value.get<std::string>() : value.dump());
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const ElementInput parts(input);
    EncodeDecoded(parts);
    Encode(parts, input.Text());
    FrameDataValue frame(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, input.ConsumeIntegral<std::uint16_t>(),
                         input.UpTo<std::uint16_t>(125));
    for (auto changes = input.UpTo(4U); changes > 0; --changes) {
        SetValues(frame, input);
    }
    return 0;
}
