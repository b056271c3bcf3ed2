#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "DataModel/AttributeConverter.h"
#include "DataModel/ElementData.h"
#include "DataModel/ExtendedElementData.h"
#include "kzm/StandIn/CapturedLog.h"

namespace kzm::ModbusDeviceModel::Test {

using namespace DataModel;
using DeviceProfile::EnumerationPairData;
using Log::OrbaLogLevel;
using nlohmann::json;
using StandIn::CapturedLog;
using Bytes = std::vector<std::uint8_t>;
using Pairs = std::vector<EnumerationPairData>;

// "01 FF" or "01FF" as bytes.
inline Bytes Hex(const std::string& text) {
    Bytes bytes;
    std::string digits;
    for (const char c : text) {
        if (c != ' ') {
            digits += c;
        }
        if (digits.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

// An element of frame 0 at register 100; by default with a mask of all ones, no pattern and no scaling.
struct Traits {
    int code = 2;
    double scale = 1.0;
    float offset = 0.0F;
    ByteOrderingEnum order = ByteOrderingEnum::DEVICE_ORDER;
    const char* mask = nullptr;
    const char* pattern = nullptr;
    std::shared_ptr<Pairs> pairs = nullptr;
    std::uint8_t registers = 1;
    std::uint8_t frame = 0;
};

template <typename Element, typename... Path>
Element Make(const Traits& traits, Path... path) {
    return Element(100, traits.registers,
                   std::make_shared<Bytes>(traits.mask ? Hex(traits.mask) : Bytes(256, std::uint8_t{0xFF})),
                   traits.scale, traits.pattern ? std::make_shared<std::string>(traits.pattern) : nullptr,
                   static_cast<LogicCodeIdentifier>(traits.code), traits.frame, path..., traits.offset, traits.pairs,
                   traits.order, traits.pattern != nullptr);
}

inline ElementData MakeElement(const Traits& traits) {
    return Make<ElementData>(traits, std::string("path"));
}

// An element whose exponent comes from what it depends on; its words are stored as little endian.
inline ExtendedElementData MakeExtended(const Traits& traits, std::vector<LogicCodeDependency> dependencies) {
    return ExtendedElementData(100, traits.registers,
                               std::make_shared<Bytes>(traits.mask ? Hex(traits.mask) : Bytes(256, std::uint8_t{0xFF})),
                               traits.scale, traits.pattern ? std::make_shared<std::string>(traits.pattern) : nullptr,
                               static_cast<LogicCodeIdentifier>(traits.code), 0, "path", traits.offset, traits.pairs,
                               0xFFFE, 7, std::make_shared<std::vector<LogicCodeDependency>>(std::move(dependencies)),
                               ByteOrderingEnum::LITTLE_ENDIAN_WORDS);
}

inline std::shared_ptr<AttributeConverter> MakeConverter(const Traits& traits) {
    return std::make_shared<AttributeConverter>(Make<AttributeConverter>(traits));
}

// A value with its JSON type: "u7", "i-7", "f7.5", "\"text\"", "true", "null".
inline std::string Typed(const json& value) {
    const char* type = value.is_number_unsigned()  ? "u"
                       : value.is_number_integer() ? "i"
                       : value.is_number()         ? "f"
                                                   : "";
    return type + value.dump(-1, ' ', false, json::error_handler_t::replace);
}

// The outcome of Build: the typed value, or "refused" for false; followed by "!" if flagged invalid.
inline std::string Built(ElementData& element, const std::string& hex, bool deviceBigEndian = true,
                         ServiceImpl::IValueProcesser* processer = nullptr) {
    Bytes bytes = Hex(hex);
    bool invalid = false;
    json value = "before";
    const bool isBuilt = element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), deviceBigEndian, 2000,
                                       invalid, value, processer);
    EXPECT_TRUE(isBuilt || value == "before");
    return (isBuilt ? Typed(value) : "refused") + (invalid ? "!" : "");
}

inline std::string Decode(const Traits& traits, const std::string& hex, bool deviceBigEndian = true) {
    ElementData element = MakeElement(traits);
    return Built(element, hex, deviceBigEndian);
}

}  // namespace kzm::ModbusDeviceModel::Test
