#include "gateway/diagnosis/ValueSpan.h"

#include <algorithm>

#include "gateway/diagnosis/CodeLength.h"

namespace kzm::ModbusGateway {

namespace {

// What each further register of a value takes, beside its content: registers next to each other often belong together.
// Blank ones take as much as separate values would, so that unused registers say nothing of the forms.
constexpr double WIDTH_BITS = -0.4;
constexpr double BLANK_WIDTH_BITS = 0.74;

double BitsOverTime(const RegisterWindow& window, ValueForm form, std::size_t count, WordOrder order) {
    double bits = 0;
    for (std::size_t i = 1; i < window.GetSnapshots(); ++i) {
        bits += BitsForChange(form, BitsOf(window.At(i - 1, count), order), BitsOf(window.At(i, count), order));
    }
    return bits;
}

// The bits of a number after one of the same form: often near it (three phases), or not.
double BitsBeside(const RegisterWindow& window, ValueForm form, std::size_t count, WordOrder order, double bits) {
    if (window.first < count) {
        return bits;
    }
    const auto neighbour = BitsOf(window.run.At(0, window.first - count, count), order);
    return EitherOf(bits + 0.5, BitsForChange(form, neighbour, BitsOf(window.At(0, count), order)) +
                                    2.0 * static_cast<double>(count));
}

void AddNumberSpan(const RegisterWindow& window, ValueForm form, WordOrder order, ValueSpans& spans) {
    const std::size_t count = RowOf(form).count;
    if (window.GetRest() < count || (order == WordOrder::NONE && count > 1)) {
        return;
    }
    const auto registers = window.At(0, count);
    const auto blank = BitsForBlank(registers, window.GetBefore());
    const double bits = BitsForNumber(form, registers, order, window.GetBefore()) +
                        (blank ? BLANK_WIDTH_BITS : WIDTH_BITS) * static_cast<double>(count - 1);
    const double changes = BitsOverTime(window, form, count, order);
    const bool isBlank = blank && changes < 0.5 * static_cast<double>(window.GetSnapshots());
    const double beside = isBlank ? bits : BitsBeside(window, form, count, order, bits);
    spans.push_back({form, 0, static_cast<std::uint16_t>(window.first), static_cast<std::uint16_t>(count),
                     bits + changes, beside + changes, isBlank});
}

}  // namespace

double RegisterWindow::BitsForChanges(std::size_t count) const {
    double bits = 0;
    for (std::size_t i = 1; i < GetSnapshots(); ++i) {
        bits += std::ranges::equal(At(i - 1, count), At(i, count)) ? 0.4 : 32.0;
    }
    return bits;
}

void AddNumberSpans(const RegisterWindow& window, WordOrder order, ValueSpans& spans) {
    for (const ValueFormRow& row : VALUE_FORMS) {
        if (IsInteger(row.form) || IsFloat(row.form)) {
            AddNumberSpan(window, row.form, order, spans);
        }
    }
}

}  // namespace kzm::ModbusGateway
