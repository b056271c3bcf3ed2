// Decodes the registers of one element, alone and out of a cache.
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "DataModel/AttributeConverter.h"
#include "DeviceCache/CacheReadAccessInterface.h"
#include "Support/Status.h"
#include "fuzz/ElementInput.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusDeviceModel;
using DataModel::AttributeConverter;
using DataModel::ElementData;
using DeviceProfile::Family;
using DeviceProfile::Output;
using nlohmann::json;

// What the value is before it is decoded.
const json UNTOUCHED = json::binary({1});

struct Outcome {
    bool built = false;
    bool invalid = false;
    json value = UNTOUCHED;

    bool operator==(const Outcome&) const = default;
};

// Nothing where the pattern is no hexadecimal number.
std::optional<Outcome> Build(ElementData& element, Bytes bytes, bool bigEndian) {
    Outcome outcome;
    try {
        outcome.built = element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), bigEndian, 2000,
                                      outcome.invalid, outcome.value, nullptr);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
    return outcome;
}

void RequireSuits(const json& value, Output output) {
    const bool isFloat = output == Output::FLOAT || output == Output::S64_AS_FLOAT;
    const bool isSigned = output == Output::S16 || output == Output::S32 || output == Output::S64;
    Require(isFloat    ? value.is_number_float()
            : isSigned ? value.is_number_integer() && !value.is_number_unsigned()
                       : value.is_number_unsigned(),
            "a number has the type of its code");
}

void RequireGoodValue(const ElementInput& parts, const json& value) {
    const auto& row = parts.Row();
    Require(value != UNTOUCHED || row.family == Family::FREQUENCY_CLASS, "a decoded value is set");
    Require(!value.is_null() || row.family == Family::TEXT_ENUMERATION, "no value is invalid");
    Require(IsFinite(value), "a number is finite");
    if (row.family == Family::NUMBER) {
        RequireSuits(value, row.output);
    }
    value.dump(-1, ' ', false, json::error_handler_t::replace);
}

void RequireConsistent(const ElementInput& parts, const Outcome& outcome) {
    if (!outcome.built) {
        Require(outcome.value == UNTOUCHED, "what is refused leaves the value alone");
        const bool hasMask = parts.mask && parts.mask->size() >= parts.bytes.size();
        Require(outcome.invalid == (!parts.bytes.empty() && (parts.bytes.size() > 255 || !hasMask)),
                "bytes that are too many, and bytes without a mask, are invalid");
    } else if (outcome.invalid) {
        Require(outcome.value.is_null() || outcome.value == "", "an invalid value is null");
    } else {
        RequireGoodValue(parts, outcome.value);
    }
}

// Hands out the same bytes whatever is asked for.
struct OneFrameCache : DeviceCache::CacheReadAccessInterface {
    explicit OneFrameCache(const Bytes& content) : bytes(content) {}
    std::uint32_t ReadFrame(const std::uint8_t&, const std::uint16_t&, std::uint8_t, std::uint8_t* buffer,
                            std::uint32_t capacity, DeviceCache::_Quality_t& quality) const override {
        quality = DeviceCache::QUALITY_GOOD;
        std::copy_n(bytes.begin(), std::min<std::size_t>(bytes.size(), capacity), buffer);
        return static_cast<std::uint32_t>(bytes.size());
    }
    std::uint64_t GetFrameTimestamp(std::uint8_t) const override { return 1; }

    const Bytes& bytes;
};

void ReadFromCache(const ElementInput& parts, ElementData& element, const std::optional<Outcome>& alone) {
    const auto cache = std::make_shared<OneFrameCache>(parts.bytes);
    DeviceCache::_Quality_t quality{};
    json value = UNTOUCHED;
    const auto status = AttributeConverter::GetValueFromElementData(cache, parts.bigEndian, /*ignoreCacheAge=*/true,
                                                                    element, quality, value);
    if (parts.frame == ElementData::INVALID_FRAME_INDEX) {
        Require(status == Status::INVALID_ARGUMENT, "an element in no frame cannot be read");
        return;
    }
    const bool isRead = alone && alone->built && !alone->invalid;
    Require(status == (isRead ? Status::SUCCESS : Status::NOT_AVAILABLE), "the status tells whether there is a value");
    Require(!isRead || value == alone->value, "the cache's bytes decode to the same");

    auto converter = parts.Make<AttributeConverter>();
    converter.GetIotValue("urn", cache, parts.bigEndian, /*ignoreCacheAge=*/true, quality, value);
    converter.GetEdmValue(cache, parts.bigEndian, /*ignoreCacheAge=*/true, quality, value);
    Require(converter.HasEnumOutput() == (parts.pairs != nullptr), "pairs make an enumeration");
    converter.ToJson();
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const ElementInput parts(input);
    auto element = parts.MakeElement();
    const auto outcome = Build(element, parts.bytes, parts.bigEndian);
    if (outcome) {
        RequireConsistent(parts, *outcome);
    } else {
        Require(parts.pattern && parts.checksPattern, "only a pattern can be faulty");
    }
    Require(Build(element, parts.bytes, parts.bigEndian) == outcome, "decoding again gives the same");
    ReadFromCache(parts, element, outcome);
    return 0;
}
