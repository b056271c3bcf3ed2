#include "gateway/diagnosis/OrderModel.h"

namespace kzm::ModbusGateway {

namespace {

constexpr int ROUNDS = 4;
constexpr double BLANK_WEIGHT = 0.05;  // of a value that says nothing of its form
constexpr double PRIOR_VALUES = 8;     // how many values the usual habits are worth
constexpr double PRIOR_PLACES = 2;     // the same of even and odd addresses

}  // namespace

OrderModel::OrderModel(const RegisterRuns& registers, WordOrder order, const Expectations& expectations)
    : mOrder(order) {
    for (const RegisterRun& run : registers.runs) {
        if (!run.IsOfRegisters()) {
            continue;
        }
        Run model{&run, {}, {}};
        for (std::size_t i = 0; i < run.GetSize(); ++i) {
            const RegisterWindow window{registers, run, i};
            AddNumberSpans(window, order, model.spans);
            AddTextSpans(window, model.spans);
            AddDateSpans(window, order, model.spans);
        }
        Apply(expectations, run, order, model.spans);
        mRuns.push_back(std::move(model));
    }
    Weigh();
    for (int i = 1; i < ROUNDS; ++i) {
        mHabits = LearntHabits();
        Weigh();
    }
}

void OrderModel::Weigh() {
    mBits = 0;
    for (Run& run : mRuns) {
        const Segmentation segmentation(*run.registers, run.spans, mHabits);
        run.probabilities = segmentation.GetProbabilities();
        mBits += segmentation.GetBits();
    }
}

DeviceHabits OrderModel::LearntHabits() const {
    DeviceHabits habits;
    double values = PRIOR_VALUES;
    double wide = 2 * PRIOR_PLACES;
    double even = PRIOR_PLACES;
    for (double& share : habits.shares) {
        share *= PRIOR_VALUES;
    }
    for (const Run& run : mRuns) {
        for (std::size_t i = 0; i < run.spans.size(); ++i) {
            const ValueSpan& span = run.spans[i];
            const double weight = run.probabilities[i] * (span.isBlank ? BLANK_WEIGHT : 1.0);
            habits.shares[static_cast<std::size_t>(span.form)] += weight;
            values += weight;
            wide += span.count > 1 ? weight : 0;
            even += span.count > 1 && (run.registers->address + span.first) % 2 == 0 ? weight : 0;
        }
    }
    for (double& share : habits.shares) {
        share /= values;
    }
    habits.evenShare = even / wide;
    return habits;
}

}  // namespace kzm::ModbusGateway
