#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "gateway/diagnosis/ValueForm.h"

// How many bits it takes to write registers down, if they hold what is assumed: the shorter, the more plausible. The
// difference between two assumptions is the logarithm, to base 2, of how much better one explains the registers.
namespace kzm::ModbusGateway {

// The bits of one number. `before` is the register before the first, if known: zeros and ones in a row (unused
// registers) cost little whatever form they are taken for.
double BitsForNumber(ValueForm form, std::span<const std::uint16_t> registers, WordOrder order,
                     std::optional<std::uint16_t> before);

// The bits of a number whose neighbour of the same form, or the same number a snapshot earlier, is known.
double BitsForChange(ValueForm form, std::uint64_t from, std::uint64_t to);

// The bits of registers that are all zero, or all ones; nullopt for others.
std::optional<double> BitsForBlank(std::span<const std::uint16_t> registers, std::optional<std::uint16_t> before);

// The bits of one of two alternatives with these bits.
double EitherOf(double first, double second);

}  // namespace kzm::ModbusGateway
