#pragma once

#include <algorithm>

#include "Support/Status.h"
#include "gateway/chains/ChainCall.h"
#include "gateway/chains/NumberOrder.h"

// What the chains that compare, combine or choose compute. NOT_AVAILABLE: no label matches the value.
namespace kzm::ModbusGateway::Decisions {

namespace Status = ModbusDeviceModel::Status;
using kz::orba::StatusCode;
using nlohmann::json;

// Sets of orders, a bit each.
inline constexpr unsigned LESS = 1;
inline constexpr unsigned EQUAL = 2;
inline constexpr unsigned GREATER = 4;

template <bool (*IS_TRUE)(const ChainCall&)>
StatusCode Decide(const ChainCall& call, json& result) {
    result = IS_TRUE(call);
    return Status::SUCCESS;
}

template <unsigned ORDERS>
bool Compare(const ChainCall& call) {
    const json& left = call[0];
    if (!left.is_number()) {
        return (ORDERS & (left == call[1] ? EQUAL : GREATER)) != 0;
    }
    return (ORDERS >> (OrderOf(left, call[1], call.settings.deadBand) + 1) & 1) != 0;
}

template <bool INSIDE>
bool CompareWithBand(const ChainCall& call) {
    const auto& settings = call.settings;
    const bool inside = OrderOf(call[0], settings.low, settings.deadBand) >= 0 &&
                        OrderOf(call[0], settings.high, settings.deadBand) <= 0;
    return inside == INSIDE;
}

template <bool STATE>
bool AnyIs(const ChainCall& call) {
    return std::any_of(call.inputs.begin(), call.inputs.end(),
                       [&](const std::string& input) { return call.parameters.find(input)->get<bool>() == STATE; });
}

inline bool And(const ChainCall& call) {
    return !AnyIs<false>(call);
}

// A negative number is its two's complement in 64 bits.
inline bool HasBit(const json& number, unsigned bit) {
    return (number.get<std::uint64_t>() >> bit & 1) != 0;
}

inline bool Bit(const ChainCall& call) {
    return HasBit(call[0], call.settings.bit);
}

inline bool Matches(const ChainSettings::Choice& choice, const json& value) {
    if (value.is_string()) {
        return value.get_ref<const std::string&>() == choice.text;
    }
    return value.is_number() && choice.value.is_number() ? OrderOf(value, choice.value, 0) == 0 : value == choice.value;
}

// The label of the first choice that suits, or the default one.
StatusCode ChooseFirst(const ChainSettings& settings, json& result, auto suits) {
    const auto chosen = std::find_if(settings.choices.begin(), settings.choices.end(), suits);
    const std::string& label = chosen == settings.choices.end() ? settings.defaultLabel : chosen->label;
    if (label.empty()) {
        return Status::NOT_AVAILABLE;
    }
    result = label;
    return Status::SUCCESS;
}

inline StatusCode ChooseByValue(const ChainCall& call, json& result) {
    return ChooseFirst(call.settings, result, [&](const auto& choice) { return Matches(choice, call[0]); });
}

inline StatusCode ChooseByBit(const ChainCall& call, json& result) {
    return ChooseFirst(call.settings, result,
                       [&](const auto& choice) { return HasBit(call[0], choice.value.template get<unsigned>()); });
}

}  // namespace kzm::ModbusGateway::Decisions
