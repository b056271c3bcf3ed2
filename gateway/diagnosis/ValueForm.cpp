#include "gateway/diagnosis/ValueForm.h"

#include <bit>
#include <cmath>

namespace kzm::ModbusGateway {

std::uint64_t BitsOf(std::span<const std::uint16_t> registers, WordOrder order) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < registers.size(); ++i) {
        bits = bits << 16 | registers[order == WordOrder::BIG ? i : registers.size() - 1 - i];
    }
    return bits;
}

bool IsInvalid(ValueForm form, std::uint64_t bits) {
    if (form == ValueForm::FLOAT32) {
        return !std::isfinite(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    }
    if (form == ValueForm::FLOAT64) {
        return !std::isfinite(std::bit_cast<double>(bits));
    }
    const std::uint64_t ones = ~std::uint64_t{0} >> (64 - 16 * RowOf(form).count);
    return IsInteger(form) && (bits == ones || bits == ones / 2 || bits == ones / 2 + 1);
}

}  // namespace kzm::ModbusGateway
