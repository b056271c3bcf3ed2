#include <benchmark/benchmark.h>

#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "benchmarks/AllocationCount.h"
#include "benchmarks/OneFrameCache.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Explanation.h"
#include "kz/orba/VortaORBAObject.h"
#include "src/TestElement.h"

namespace kzm::Benchmark {
namespace {

using namespace ModbusDeviceModel;
using kz::orba::VortaORBAObject;
using Test::json;
using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;
using Objects = std::vector<VortaORBAObject>;

constexpr std::uint16_t FIRST_ADDRESS = 100;
constexpr std::uint16_t REGISTERS = 120;

std::string NameOf(std::size_t index) {
    return "ElectricalMeasurement.RmsCurrentFeeder" + std::to_string(index);
}

// Every object is a number of two registers. Their names differ late, as those of a data model do.
Device::DeviceModel::ObjectAdapters MakeAdapters(std::size_t count) {
    Device::DeviceModel::ObjectAdapters adapters;
    for (std::size_t i = 0; i < count; ++i) {
        const auto adapter = std::make_shared<DataModel::DataObjectAdapter>("", NameOf(i));
        const auto address = static_cast<std::uint16_t>(FIRST_ADDRESS + 2 * i % REGISTERS);
        adapter->SetAdapter(DataModel::VALUE, std::make_shared<DataModel::AttributeConverter>(
                                                  address, std::uint8_t{2}, std::make_shared<Test::Bytes>(4, 0xFF), 0.1,
                                                  nullptr, static_cast<LogicCodeIdentifier>(14), std::uint8_t{0}, 0.0F,
                                                  nullptr, ByteOrderingEnum::DEVICE_ORDER, false));
        adapters[{NameOf(i), ""}] = adapter;
    }
    return adapters;
}

std::vector<DeviceProfile::FrameData> Frames() {
    return {DeviceProfile::FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, REGISTERS, FIRST_ADDRESS)};
}

// `count` objects spread evenly over a model, with the attributes that an earlier request put into them.
Objects MakeObjects(std::size_t count, std::size_t modelSize) {
    Objects objects;
    for (std::size_t i = 0; i < count; ++i) {
        objects.emplace_back("id", NameOf(i * modelSize / count), "",
                             json{{"value", 0U}, {"quality", "Good"}, {"datetime", "2025-06-12T09:30:07.250Z"}});
    }
    return objects;
}

void Request(benchmark::State& state, const Device::DeviceModel& model, const Cache& cache, Objects& objects) {
    std::size_t next = 0;
    std::size_t failures = 0;
    for (auto _ : state) {
        failures += model.GetVortaObjectValue(cache, false, objects[next]) != kz::orba::StatusCode{};
        next = next + 1 < objects.size() ? next + 1 : 0;
    }
    if (failures > 0) {
        state.SkipWithError("a request failed");
    }
}

// The heap that one request takes, and that its JSON values take alone.
void CountAllocations(benchmark::State& state, const Device::DeviceModel& model, const Cache& cache,
                      VortaORBAObject& object) {
    std::size_t before = AllocationCount();
    model.GetVortaObjectValue(cache, false, object);
    state.counters["allocations"] = static_cast<double>(AllocationCount() - before);
    before = AllocationCount();
    const json texts[] = {json("Good"), json(std::string("2025-06-12T09:30:07.250Z"))};
    state.counters["json"] = static_cast<double>(AllocationCount() - before);
}

void Sizes(benchmark::State& state, std::size_t asked) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const Device::DeviceModel model(MakeAdapters(size), Frames(), {}, {}, {}, true);
    const auto frame = std::make_shared<OneFrameCache>();
    frame->Refresh();
    const Cache cache = frame;
    Objects objects = MakeObjects(asked == 0 ? size : asked, size);
    Request(state, model, cache, objects);
    CountAllocations(state, model, cache, objects.front());
}

// The caller's own part of that: the same attributes written into the same objects, by nobody's model.
void Attributes(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    Objects objects = MakeObjects(size, size);
    std::size_t next = 0;
    for (auto _ : state) {
        objects[next].AddOrUpdateAttributeToValue("value", 0.5);
        objects[next].AddOrUpdateAttributeToValue("quality", "Good");
        objects[next].AddOrUpdateAttributeToValue("datetime", std::string("2025-06-12T09:30:07.250Z"));
        next = next + 1 < size ? next + 1 : 0;
    }
}

// All objects of a model explained in turn.
void Explanations(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const Device::DeviceModel model(MakeAdapters(size), Frames(), {}, {}, {}, true);
    const auto frame = std::make_shared<OneFrameCache>();
    frame->Refresh();
    std::size_t next = 0;
    for (auto _ : state) {
        const auto explanation = ModbusGateway::Explain(model, NameOf(next), "", {frame});
        if (explanation.why.reason != DataModel::Reason::GOOD) {
            state.SkipWithError("a request failed");
        }
        next = next + 1 < size ? next + 1 : 0;
    }
}

// What the threads of one benchmark share.
struct Shared {
    Device::DeviceModel model{MakeAdapters(1000), Frames(), {}, {}, {}, true};
    std::shared_ptr<OneFrameCache> frame = std::make_shared<OneFrameCache>();
    std::shared_ptr<ModbusGateway::RegisterCache> registers = std::make_shared<ModbusGateway::RegisterCache>(Frames());

    Shared() {
        frame->Refresh();
        registers->Update(0, std::vector<std::uint16_t>(REGISTERS, 5), DateTime::DateTime::GetRealTimeInMilliseconds());
    }
};
std::unique_ptr<Shared> shared;

// All threads ask for the same ten objects, each into JSON of its own.
void Threads(benchmark::State& state, bool gatewayCache) {
    Objects objects = MakeObjects(10, 1000);
    const Cache cache = gatewayCache ? Cache(shared->registers) : Cache(shared->frame);
    Request(state, shared->model, cache, objects);
    state.SetItemsProcessed(state.iterations());
}

void SetUp(const benchmark::State&) {
    shared = std::make_unique<Shared>();
}

void TearDown(const benchmark::State&) {
    shared.reset();
}

const bool REGISTERED = [] {
    const std::vector<std::int64_t> sizes{10, 100, 1000, 10000};
    benchmark::RegisterBenchmark("object/ten", Sizes, 10)->ArgsProduct({sizes});
    benchmark::RegisterBenchmark("object/every", Sizes, 0)->ArgsProduct({sizes});
    benchmark::RegisterBenchmark("object/attributes", Attributes)->ArgsProduct({sizes});
    benchmark::RegisterBenchmark("explain", Explanations)->ArgsProduct({sizes});
    for (const bool gatewayCache : {false, true}) {
        const char* name = gatewayCache ? "threads/gateway-cache" : "threads/plain-cache";
        benchmark::RegisterBenchmark(name, Threads, gatewayCache)
            ->ThreadRange(1, 2)
            ->UseRealTime()
            ->Setup(SetUp)
            ->Teardown(TearDown);
    }
    return true;
}();

}  // namespace
}  // namespace kzm::Benchmark
