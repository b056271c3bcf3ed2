#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "gateway/diagnosis/RegisterRuns.h"
#include "gateway/diagnosis/ValueForm.h"

namespace kzm::ModbusGateway {

// One value that registers of a run may hold.
struct ValueSpan {
    ValueForm form;
    std::uint8_t layout = 0;   // of a date in fields: its row in DATE_LAYOUTS
    std::uint16_t first;       // the position of its first register in the run
    std::uint16_t count;       // registers
    double bits;               // how many it takes to write the registers down as this, at all snapshots
    double bitsBeside = bits;  // the same if a value of the same form is right before it; many are alike
    bool isBlank = false;      // zeros or ones, which say nothing of the form
};

// All snapshots of some registers of a run.
struct RegisterWindow {
    const RegisterRuns& all;
    const RegisterRun& run;
    std::size_t first;

    std::span<const std::uint16_t> At(std::size_t snapshot, std::size_t count) const {
        return run.At(snapshot, first, count);
    }
    std::size_t GetRest() const { return run.GetSize() - first; }
    std::size_t GetSnapshots() const { return run.snapshots.size(); }
    std::optional<std::uint16_t> GetBefore() const {
        return first == 0 ? std::nullopt : std::optional(run.snapshots[0][first - 1]);
    }
    // The bits of registers that are not expected to change.
    double BitsForChanges(std::size_t count) const;
};

using ValueSpans = std::vector<ValueSpan>;

// Add what may begin at the window's first register. Without an order, only what needs none.
void AddNumberSpans(const RegisterWindow& window, WordOrder order, ValueSpans& spans);
void AddTextSpans(const RegisterWindow& window, ValueSpans& spans);
void AddDateSpans(const RegisterWindow& window, WordOrder order, ValueSpans& spans);

// What a span of these forms holds in the first snapshot: the characters; "2026-03-14T09:26:53" by the device's clock.
std::string TextOf(const ValueSpan& span, const RegisterRun& run);
std::string DateTextOf(const ValueSpan& span, const RegisterRun& run, WordOrder order);

}  // namespace kzm::ModbusGateway
