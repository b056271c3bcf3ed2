#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "DataModel/ElementData.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "fuzz/Input.h"

namespace kzm::ModbusFuzz {

// What an element is made of, and the bytes of its registers.
struct ElementInput {
    using Pairs = std::vector<ModbusDeviceModel::DeviceProfile::EnumerationPairData>;

    explicit ElementInput(Input& input)
        : code{input.UpTo(static_cast<std::uint8_t>(ModbusDeviceModel::DeviceProfile::LogicCodeRows().size()))},
          registers(TakeRegisters(input)),
          bytes(TakeBytes(input)),
          mask(TakeMask(input)),
          pattern(TakePattern(input)),
          checksPattern(input.ConsumeBool()),
          scale(input.Double()),
          offset(input.Float()),
          order{input.UpTo<std::int16_t>(4)},
          bigEndian(input.ConsumeBool()),
          frame(input.ConsumeBool() ? std::uint8_t{0} : input.ConsumeIntegral<std::uint8_t>()),
          pairs(TakePairs(input)) {}

    // `path`: the arguments between frame index and offset.
    template <typename Element, typename... Path>
    Element Make(Path&&... path) const {
        return Element(100, registers, mask, scale, pattern, code, frame, std::forward<Path>(path)..., offset, pairs,
                       order, checksPattern);
    }
    ModbusDeviceModel::DataModel::ElementData MakeElement() const {
        return Make<ModbusDeviceModel::DataModel::ElementData>(std::string("path"));
    }
    const ModbusDeviceModel::DeviceProfile::LogicCodeRow& Row() const {
        return ModbusDeviceModel::DeviceProfile::RowOf(code);
    }

    ModbusDeviceModel::LogicCodeIdentifier code;
    std::uint8_t registers;
    Bytes bytes;
    std::shared_ptr<Bytes> mask;
    std::shared_ptr<std::string> pattern;
    bool checksPattern;
    double scale;
    float offset;
    ModbusDeviceModel::ByteOrderingEnum order;
    bool bigEndian;
    std::uint8_t frame;
    std::shared_ptr<Pairs> pairs;

private:
    // Mostly as many as the code can have.
    std::uint8_t TakeRegisters(Input& input) const {
        return input.ConsumeBool() ? input.ConsumeIntegral<std::uint8_t>()
                                   : input.ConsumeIntegralInRange(Row().minRegisters, Row().maxRegisters);
    }

    // Mostly those of the registers.
    Bytes TakeBytes(Input& input) const {
        Bytes taken = input.UpToBytes(input.ConsumeBool() ? 300 : std::size_t{2} * registers);
        if (input.ConsumeBool()) {
            taken.resize(std::size_t{2} * registers);
        }
        taken.shrink_to_fit();  // so that a byte too many is seen
        return taken;
    }

    std::shared_ptr<Bytes> TakeMask(Input& input) const {
        switch (input.UpTo(3)) {
            case 1:
                return nullptr;
            case 2:
                return std::make_shared<Bytes>(input.UpToBytes(bytes.size()));
            case 3:
                return std::make_shared<Bytes>(bytes);
            default:
                return std::make_shared<Bytes>(bytes.size(), std::uint8_t{0xFF});
        }
    }

    std::shared_ptr<std::string> TakePattern(Input& input) const {
        std::string text = "0x";
        switch (input.UpTo(3)) {
            case 1:
                text = input.Text();
                break;
            case 2:
                for (const std::uint8_t byte : bytes) {
                    text.append({"0123456789abcdef"[byte / 16], "0123456789ABCDEF"[byte % 16]});
                }
                break;
            case 3:
                text += input.ConsumeBytesAsString(2 * bytes.size());
                break;
            default:
                return nullptr;
        }
        return std::make_shared<std::string>(text);
    }

    static std::shared_ptr<Pairs> TakePairs(Input& input) {
        if (input.ConsumeBool()) {
            return nullptr;
        }
        const auto pairs = std::make_shared<Pairs>();
        for (auto count = input.UpTo(5U); count > 0; --count) {
            const std::string label = input.Text();
            switch (input.UpTo(3)) {
                case 1:
                    pairs->emplace_back(input.Float(), label);
                    break;
                case 2:
                    pairs->emplace_back(input.Text().c_str(), label);
                    break;
                case 3:
                    pairs->emplace_back(input.ConsumeIntegral<std::uint32_t>(), label);
                    break;
                default:
                    pairs->emplace_back(std::uint32_t{input.ConsumeIntegral<std::uint8_t>()}, label);
            }
        }
        return pairs;
    }
};

}  // namespace kzm::ModbusFuzz
