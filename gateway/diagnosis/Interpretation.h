#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceProfile/ByteOrderingEnum.h"
#include "gateway/Export.h"
#include "gateway/json/NumberText.h"

namespace kzm::ModbusGateway {

// One way to read registers of a device as a value: what a device profile would say of them, without the profile. A
// plain record. Nothing of it logs, keeps anything or throws but std::bad_alloc; any number of threads.
struct KZM_GATEWAY_EXPORT Interpretation {
    // Registers in wire order.
    using Registers = std::span<const std::uint16_t>;

    std::string_view type;   // as profiles write it ("uint32"), a name of the table of logic codes; static text
    std::uint8_t count = 1;  // registers, 1 to 127
    // Which of several registers comes first; DEVICE_ORDER means BIG_ENDIAN_WORDS here.
    ModbusDeviceModel::ByteOrderingEnum order = ModbusDeviceModel::ByteOrderingEnum::BIG_ENDIAN_WORDS;
    bool bytesExchanged = false;  // the two bytes of every register, before anything else

    // Compares all of them.
    bool operator==(const Interpretation&) const = default;

    // The plain types that `count` registers can have, in every order: whole numbers and floats of 1 to 4 registers,
    // texts of 1 to 127. Orders without exchanged bytes come first. Empty for any other number.
    static std::vector<Interpretation> AllOf(std::size_t count);

    // The value of the first `count` registers as an element of a profile has it (ElementData::Build), offset + raw *
    // scale, in the value's unit. A scale or offset that is not whole takes the type's sibling that keeps the fraction,
    // "uint32-to-float" for "uint32"; the types without one (64 bits unsigned) are rounded. Null if there is no value:
    // too few registers, not a finite number, out of the type's range, an unknown type, or a scaled power, which needs
    // more than registers.
    nlohmann::json ValueOf(Registers registers, double scale = 1, float offset = 0) const;

    // Why this is hardly what the registers mean, as a phrase for the user; empty if it may well be. For the number
    // before scale and offset:
    // - any type: there is no value, or the bits of a whole number are a usual pattern of "not available" (only ones,
    //   or only the highest bit); -1 in one register may be meant
    // - floats: not zero, and smaller than 1e-6 or larger than 1e9
    // - unsigned numbers of one register: 0xF000 and above; signed ones: below -0x4000
    // - whole numbers of two registers: beyond 1e9, of more: beyond 2^48, either sign; or the least significant
    //   register is zero and a higher one is not
    // - texts: fewer than two characters, or one that is not printable
    // Static text.
    std::string_view WhyImplausible(Registers registers) const;

    // How many digits of the value mean something.
    NumberPrecision GetPrecision(double scale = 1, float offset = 0) const;

    // "big" or "little" as profiles write it; empty for one register, and for a type with an order of its own.
    std::string_view GetOrderName() const;

    // The members of an element of a profile that make it read like this: `"type": "uint32", "order": "little"`, with
    // "count" where the type needs it, and with "scale" and "offset" that change something. No order of a profile
    // exchanges bytes: empty for floats and signed numbers with exchanged bytes; for unsigned ones the computation that
    // does it, in words.
    std::string GetProfileMembers(double scale = 1, float offset = 0) const;
};

}  // namespace kzm::ModbusGateway
