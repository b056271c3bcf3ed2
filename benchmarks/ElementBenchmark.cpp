#include <benchmark/benchmark.h>

#include "DataModel/ExtendedElementData.h"
#include "DataModel/IValueProcesser.h"
#include "DataModel/LogicCodeDependency.h"
#include "benchmarks/BareDecoding.h"
#include "src/TestElement.h"

namespace kzm::Benchmark {
namespace {

using namespace ModbusDeviceModel;
using Test::Bytes;
using Test::ElementData;
using Test::json;
using Test::Pairs;

constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;
constexpr int EXPONENT = -2;

const auto LABELS = std::make_shared<Pairs>(Pairs{{std::uint32_t{0}, "Off"},
                                                  {std::uint32_t{1}, "Starting"},
                                                  {std::uint32_t{2}, "On"},
                                                  {std::uint32_t{3}, "Tripped"}});
const auto TEXT_LABELS = std::make_shared<Pairs>(Pairs{{"MANUAL", "Manual"}, {"AUTO", "Automatic"}});

// One element of a family: the library's and the same by hand.
struct Row {
    const char* name;
    Test::Traits traits;
    const char* registers;
    Bare::Decoder* bare;
};

// clang-format off
const Row ROWS[] = {
    {"uint16",            {.code = 2, .scale = 0.1}, "1234", Bare::Uint16},
    {"uint16-unscaled",   {.code = 2}, "1234", Bare::Uint16},
    {"uint32-swapped",    {.code = 14, .scale = 0.1, .order = LITTLE, .registers = 2}, "5678 1234", Bare::Uint32},
    {"uint32-pattern",    {.code = 14, .scale = 0.1, .pattern = "0x80000000", .registers = 2}, "1234 5678", Bare::Uint32},
    {"int32-to-float",    {.code = 17, .scale = 0.1, .offset = 5, .registers = 2}, "FFFF 5678", Bare::Int32AsFloat},
    {"int64",             {.code = 24, .scale = 10, .registers = 4}, "0000 1234 5678 9ABC", Bare::Int64},
    {"float32",           {.code = 31, .scale = 0.1, .registers = 2}, "4247 F000", Bare::Float32},
    {"float64",           {.code = 32, .scale = 0.1, .registers = 4}, "4048 FE00 0000 0000", Bare::Float64},
    {"boolean",           {.code = 10}, "0001", Bare::Boolean},
    {"mod10k",            {.code = 21, .registers = 4}, "270F 0001 0002 0003", Bare::DecimalWords},
    {"enum8",             {.code = 23, .pairs = LABELS}, "0002", Bare::Enumeration},
    {"enum16",            {.code = 0, .mask = "0300", .pairs = LABELS}, "0200", Bare::ShiftedEnumeration},
    {"enum-text",         {.code = 61, .pairs = TEXT_LABELS, .registers = 4}, "4155544F 00000000", Bare::TextEnumeration},
    {"decimal-text",      {.code = 57, .registers = 2}, "1234 5678", Bare::DecimalText},
    {"power-factor",      {.code = 39, .registers = 2}, "3FA0 0000", Bare::PowerFactor},
    {"quadrant",          {.code = 40, .registers = 2}, "3FA0 0000", Bare::Quadrant},
    {"load-nature",       {.code = 58, .registers = 2}, "3F40 0000", Bare::LoadNature},
    {"frequency-class",   {.code = 53}, "0032", Bare::FrequencyClass},
    {"text",              {.code = 62, .registers = 8}, "536572 69616C20 4E6F2E20 31323334 00", Bare::Text},
    {"text-swapped",      {.code = 43, .registers = 8}, "6553 6972 6C61 4E20 2E6F 3120 3332 0034", Bare::SwappedText},
    {"datetime-iec870",   {.code = 44, .registers = 4}, "0019 060C 091E 2328", Bare::DateIec870},
    {"datetime-3-reg.",   {.code = 45, .registers = 3}, "060C 7D09 1E09", Bare::Date3Registers},
    {"datetime-ulp",      {.code = 46, .registers = 3}, "2FDA 1234 00FA", Bare::DateUlp},
    {"datetime-cm",       {.code = 47, .registers = 4}, "060C 7D09 1E09 00FA", Bare::DateCm},
    {"datetime-msp",      {.code = 48, .registers = 3}, "060C 1909 1E09", Bare::DateMsp},
    {"version",           {.code = 56}, "3039", Bare::Version},
    {"scaled-power",      {.code = 34, .scale = 10}, "1234", Bare::ScaledPower},
};
// clang-format on

class FixedExponent final : public ServiceImpl::IValueProcesser {
    bool GetValue(const std::string&, json& value) override {
        value = EXPONENT;
        return true;
    }
};

std::unique_ptr<ElementData> ElementOf(const Test::Traits& traits) {
    if (traits.code != 34) {
        return std::make_unique<ElementData>(Test::MakeElement(traits));
    }
    const auto exponent = std::make_shared<std::vector<DataModel::LogicCodeDependency>>(1);
    return std::make_unique<DataModel::ExtendedElementData>(
        std::uint16_t{100}, traits.registers, std::make_shared<Bytes>(256, std::uint8_t{0xFF}), traits.scale, nullptr,
        static_cast<LogicCodeIdentifier>(traits.code), traits.frame, "path", traits.offset, nullptr, std::uint16_t{0},
        0U, exponent, traits.order);
}

std::uint64_t NumberOf(const char* hexadecimal) {
    return std::stoull(hexadecimal, nullptr, 16);
}

Bare::Element BareElementOf(const Test::Traits& traits) {
    Bare::Element element{.swapped = traits.order == LITTLE,
                          .scale = traits.scale,
                          .offset = traits.offset,
                          .mask = traits.mask ? NumberOf(traits.mask) : ~std::uint64_t{0},
                          .pattern = {},
                          .exponent = EXPONENT,
                          .labels = {},
                          .textLabels = {}};
    if (traits.pattern) {
        element.pattern = NumberOf(traits.pattern);
    }
    for (const auto& pair : traits.pairs ? *traits.pairs : Pairs()) {
        element.labels.emplace_back(pair.mValue.mUnsigned, pair.mLabel);
        element.textLabels.emplace_back(pair.mStringValue, pair.mLabel);
    }
    return element;
}

// Both copy the registers first, as they come from a cache and the library decodes in place.
constexpr std::size_t LONGEST = 16;

Bytes RegistersOf(const Row& row) {
    Bytes registers = Test::Hex(row.registers);
    registers.resize(LONGEST);
    return registers;
}

void Library(benchmark::State& state, const Row& row) {
    const auto element = ElementOf(row.traits);
    const Bytes registers = RegistersOf(row);
    const std::size_t length = 2 * std::size_t{row.traits.registers};
    FixedExponent exponent;
    unsigned char buffer[LONGEST];
    bool invalid = false;
    json value;
    for (auto _ : state) {
        std::copy_n(registers.begin(), LONGEST, buffer);
        element->Build(buffer, static_cast<unsigned>(length), true, 2000, invalid, value, &exponent);
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel(value.dump());
}

void Floor(benchmark::State& state, const Row& row) {
    const Bare::Element element = BareElementOf(row.traits);
    const Bytes registers = RegistersOf(row);
    const std::size_t length = 2 * std::size_t{row.traits.registers};
    Bare::Decoder* decode = row.bare;
    benchmark::DoNotOptimize(decode);
    unsigned char buffer[LONGEST];
    json value;
    for (auto _ : state) {
        std::copy_n(registers.begin(), LONGEST, buffer);
        decode(element, buffer, length, value);
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel(value.dump());
}

const bool REGISTERED = [] {
    for (const Row& row : ROWS) {
        const std::string name = std::string("element/") + row.name;
        benchmark::RegisterBenchmark((name + "/library").c_str(), Library, row);
        benchmark::RegisterBenchmark((name + "/floor").c_str(), Floor, row);
    }
    return true;
}();

}  // namespace
}  // namespace kzm::Benchmark
