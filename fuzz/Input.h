#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kzm/Log/RootLogger.h"

namespace kzm::ModbusFuzz {

using Bytes = std::vector<std::uint8_t>;

// Ends the process, which makes the fuzzer keep the input.
inline void Require(bool holds, const char* rule) {
    if (!holds) {
        std::fprintf(stderr, "Broken: %s\n", rule);
        std::abort();
    }
}

// The fuzzer's input, from which typed pieces are taken; an exhausted one gives zeros. All log lines are made, and
// thrown away.
class Input : public FuzzedDataProvider {
public:
    Input(const std::uint8_t* data, std::size_t size) : FuzzedDataProvider(data, size) {
        [[maybe_unused]] static const bool IS_LOG_CAUGHT = [] {
            Log::RootLogger::GetInstance().SetSink([](Log::OrbaLogLevel, const char*) {});
            Log::RootLogger::GetInstance().SetLevel(Log::OrbaLogLevel::TRACE);
            return true;
        }();
    }

    template <typename Number>
    Number UpTo(Number most) {
        return ConsumeIntegralInRange<Number>(0, most);
    }

    // Any bit pattern, or one of the numbers at which conversions turn.
    double Double() {
        constexpr double TURNS[] = {
            1,       0,      -1,     0.1,    -0.0,    10,     0x1p31,
            0x1p32,  0x1p53, 0x1p63, 0x1p64, -0x1p63, 1e-320, std::numeric_limits<double>::max(),
            INFINITY};
        return ConsumeBool() ? PickValueInArray(TURNS) : std::bit_cast<double>(ConsumeIntegral<std::uint64_t>());
    }
    float Float() {
        constexpr float TURNS[] = {0,       1, -0.5F, 0x1p31F, 0x1p63F, -0x1p63F, std::numeric_limits<float>::max(),
                                   INFINITY};
        return ConsumeBool() ? PickValueInArray(TURNS) : std::bit_cast<float>(ConsumeIntegral<std::uint32_t>());
    }

    Bytes UpToBytes(std::size_t most) { return ConsumeBytes<std::uint8_t>(UpTo(most)); }
    std::string Text() { return ConsumeRandomLengthString(64); }

    // Any JSON, also what no text can say: numbers that are not finite, texts that are no UTF-8, binary values.
    nlohmann::json Json(unsigned depth = 2) {
        switch (UpTo(depth > 0 ? 9U : 7U)) {
            case 1:
                return ConsumeBool();
            case 2:
                return ConsumeIntegral<std::int64_t>();
            case 3:
                return ConsumeIntegral<std::uint64_t>();
            case 4:
                return ConsumeIntegral<std::int8_t>();
            case 5:
                return Double();
            case 6:
                return Text();
            case 7:
                return nlohmann::json::binary(UpToBytes(8));
            case 8: {
                auto list = nlohmann::json::array();
                for (auto count = UpTo(4U); count > 0; --count) {
                    list.push_back(Json(depth - 1));
                }
                return list;
            }
            case 9: {
                auto object = nlohmann::json::object();
                for (auto count = UpTo(4U); count > 0; --count) {
                    object[Text()] = Json(depth - 1);
                }
                return object;
            }
            default:
                return nullptr;
        }
    }
};

// Whether every number in it is finite.
inline bool IsFinite(const nlohmann::json& value) {
    if (value.is_structured()) {
        return std::all_of(value.begin(), value.end(), [](const auto& item) { return IsFinite(item); });
    }
    return !value.is_number_float() || std::isfinite(value.get<double>());
}

}  // namespace kzm::ModbusFuzz
