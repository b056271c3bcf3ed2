#include <benchmark/benchmark.h>

#include "benchmarks/Requests.h"

namespace kzm::Benchmark {
namespace {

// At the level that the process starts with, which admits no line of a request that succeeds.
void Measure(benchmark::State& state, std::unique_ptr<Requests> (*make)(bool), bool labelled) {
    const auto requests = make(labelled);
    requests->Refresh();
    for (auto _ : state) {
        requests->Request();
    }
}

const bool REGISTERED = [] {
    for (const bool labelled : {false, true}) {
        const std::string name = labelled ? "logging/label" : "logging/number";
        benchmark::RegisterBenchmark((name + "/library").c_str(), Measure, ModbusDeviceModel::MakeRequests, labelled);
        benchmark::RegisterBenchmark((name + "/floor").c_str(), Measure, WithoutLogging::MakeRequests, labelled);
        const std::string watched = labelled ? "watching/label" : "watching/number";
        benchmark::RegisterBenchmark((watched + "/library").c_str(), Measure, ModbusDeviceModel::MakeRequests,
                                     labelled);
        benchmark::RegisterBenchmark((watched + "/floor").c_str(), Measure, WithoutWatching::MakeRequests, labelled);
    }
    return true;
}();

}  // namespace
}  // namespace kzm::Benchmark
