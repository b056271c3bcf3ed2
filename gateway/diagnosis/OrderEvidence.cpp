#include "gateway/diagnosis/OrderEvidence.h"

#include "gateway/diagnosis/Interpretation.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ByteOrderingEnum;

namespace {

// Of the values of one kind, how many look right in each order.
struct Count {
    std::size_t all = 0;
    std::size_t right = 0;
    std::size_t otherWay = 0;
};

struct Counts {
    Count floats;
    Count integers;
    std::size_t moving = 0;  // whose low word moves while the high one stays
    std::size_t invalid = 0;
};

WordOrder OtherThan(WordOrder order) {
    return order == WordOrder::BIG ? WordOrder::LITTLE : WordOrder::BIG;
}

bool IsPlausible(const RegisterRun& run, const ValueSpan& span, WordOrder order) {
    const Interpretation interpretation{
        RowOf(span.form).signedType, static_cast<std::uint8_t>(span.count),
        order == WordOrder::BIG ? ByteOrderingEnum::BIG_ENDIAN_WORDS : ByteOrderingEnum::LITTLE_ENDIAN_WORDS};
    return interpretation.WhyImplausible(run.At(0, span.first, span.count)).empty();
}

// Whether the most significant register keeps its value while the least significant one does not.
bool Moves(const RegisterRun& run, const ValueSpan& span, WordOrder order) {
    const std::size_t last = span.first + span.count - 1U;
    const std::size_t high = order == WordOrder::BIG ? span.first : last;
    const std::size_t low = order == WordOrder::BIG ? last : span.first;
    bool moves = false;
    for (std::size_t i = 1; i < run.snapshots.size(); ++i) {
        moves = moves || run.snapshots[i][low] != run.snapshots[i - 1][low];
        if (run.snapshots[i][high] != run.snapshots[i - 1][high]) {
            return false;
        }
    }
    return moves;
}

void Add(const RegisterRun& run, const ValueSpan& span, WordOrder order, Counts& counts) {
    const auto registers = run.At(0, span.first, span.count);
    if (IsInvalid(span.form, BitsOf(registers, order))) {
        counts.invalid += IsInvalid(span.form, BitsOf(registers, OtherThan(order))) ? 0 : 1;
        return;
    }
    Count& count = IsFloat(span.form) ? counts.floats : counts.integers;
    ++count.all;
    count.right += IsPlausible(run, span, order) ? 1 : 0;
    count.otherWay += IsPlausible(run, span, OtherThan(order)) ? 1 : 0;
    counts.moving += Moves(run, span, order) ? 1 : 0;
}

Counts CountsOf(const OrderModel& model) {
    Counts counts;
    for (const auto& run : model.GetRuns()) {
        for (std::size_t i = 0; i < run.spans.size(); ++i) {
            const ValueSpan& span = run.spans[i];
            const bool isNumber = IsInteger(span.form) || IsFloat(span.form);
            if (isNumber && span.count > 1 && !span.isBlank && run.probabilities[i] > 0.5) {
                Add(*run.registers, span, model.GetOrder(), counts);
            }
        }
    }
    return counts;
}

void AddCount(const Count& count, const char* what, const std::string& way, std::vector<std::string>& evidence) {
    if (count.all > 0) {
        const std::string of = " of " + std::to_string(count.all);
        evidence.push_back(std::to_string(count.right) + of + what + way + ", " + std::to_string(count.otherWay) + of +
                           " the other way");
    }
}

}  // namespace

std::vector<std::string> EvidenceFor(const OrderModel& model) {
    const std::string way =
        model.GetOrder() == WordOrder::BIG ? " with the high word first" : " with the low word first";
    const Counts counts = CountsOf(model);
    std::vector<std::string> evidence;
    AddCount(counts.floats, " values of several registers are plausible floats", way, evidence);
    AddCount(counts.integers, " are plausible whole numbers", way, evidence);
    if (counts.moving > 0) {
        evidence.push_back("the low word moves while the high word stays in " + std::to_string(counts.moving) +
                           " values" + way);
    }
    if (counts.invalid > 0) {
        evidence.push_back(std::to_string(counts.invalid) + " patterns of \"not available\"" + way + " only");
    }
    return evidence;
}

}  // namespace kzm::ModbusGateway
