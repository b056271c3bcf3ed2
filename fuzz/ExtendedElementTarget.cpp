// Decodes the registers of one extended element, whose exponent answers of the input give.
#include <nlohmann/json.hpp>

#include "DataModel/ExtendedElementData.h"
#include "DataModel/IValueProcesser.h"
#include "DataModel/LogicCodeDependency.h"
#include "fuzz/ElementInput.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusDeviceModel;
using DataModel::ExtendedElementData;
using DeviceProfile::Family;
using nlohmann::json;
using Dependencies = std::vector<DataModel::LogicCodeDependency>;

const json UNTOUCHED = json::binary({1});

class Answers final : public ServiceImpl::IValueProcesser {
public:
    explicit Answers(Input& input) : mInput(input) {}
    bool GetValue(const std::string&, json& value) override {
        if (mInput.ConsumeBool()) {
            value = mInput.Json(1);
        }
        return mInput.ConsumeBool();
    }

private:
    Input& mInput;
};

std::shared_ptr<Dependencies> TakeDependencies(Input& input) {
    const auto dependencies = std::make_shared<Dependencies>();
    for (auto count = input.UpTo(3U); count > 0; --count) {
        dependencies->push_back({input.Text(), input.Text(), input.Json(0)});
    }
    return input.ConsumeBool() ? dependencies : nullptr;
}

ExtendedElementData MakeElement(const ElementInput& parts, Input& input) {
    return {100,
            parts.registers,
            parts.mask,
            parts.scale,
            parts.pattern,
            parts.code,
            parts.frame,
            "path",
            parts.offset,
            parts.pairs,
            input.ConsumeIntegral<std::uint16_t>(),
            input.ConsumeIntegral<std::uint32_t>(),
            TakeDependencies(input),
            parts.order};
}

void RequireConsistent(const ElementInput& parts, bool built, bool invalid, const json& value) {
    const auto family = parts.Row().family;
    if (!built) {
        Require(value == UNTOUCHED, "what is refused leaves the value alone");
        Require(invalid == (!parts.bytes.empty() && (!parts.mask || parts.mask->size() < parts.bytes.size())),
                "bytes without a mask are invalid");
    } else if (invalid) {
        Require(value.is_null() || value == "", "an invalid value is null");
    } else {
        Require(value != UNTOUCHED || family == Family::FREQUENCY_CLASS, "a decoded value is set");
        Require(!value.is_null() || family == Family::TEXT_ENUMERATION, "no value is invalid");
        Require(value.is_number_float() || family != Family::SCALED_POWER, "a scaled power is floating point");
        Require(IsFinite(value), "a number is finite");
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const ElementInput parts(input);
    auto element = MakeElement(parts, input);
    Answers answers(input);
    Bytes bytes = parts.bytes;
    bool invalid = false;
    json value = UNTOUCHED;
    const bool built = element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), parts.bigEndian, 2000, invalid,
                                     value, input.ConsumeBool() ? &answers : nullptr);
    RequireConsistent(parts, built, invalid, value);
    value.dump(-1, ' ', false, json::error_handler_t::replace);
    return 0;
}
