#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What somebody writes by hand who decodes one kind of element and no other: read the bytes, swap, check, scale, store.
// The floor under the cost of the library.
namespace kzm::Benchmark::Bare {

// What an element of the code can differ in, as such code likes it best: mask and pattern as numbers.
struct Element {
    bool swapped = false;
    double scale = 1;
    float offset = 0;
    std::uint64_t mask = ~std::uint64_t{0};
    std::optional<std::uint64_t> pattern;
    int exponent = 0;
    std::vector<std::pair<std::uint32_t, std::string>> labels;
    std::vector<std::pair<std::string, std::string>> textLabels;
};

using Decoder = void(const Element& element, const unsigned char* bytes, std::size_t length, nlohmann::json& value);

Decoder Uint16, Int32AsFloat, Uint32, Int64, Float32, Float64, Boolean, DecimalWords, DecimalText, FrequencyClass;
Decoder PowerFactor, Quadrant, LoadNature, ScaledPower, Version, Text, SwappedText;
Decoder Enumeration, ShiftedEnumeration, TextEnumeration;
Decoder DateIec870, Date3Registers, DateUlp, DateCm, DateMsp;

}  // namespace kzm::Benchmark::Bare
