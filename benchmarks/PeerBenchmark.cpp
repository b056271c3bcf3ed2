#include <benchmark/benchmark.h>
#include <modbus.h>

#include "src/TestElement.h"

namespace kzm::Benchmark {
namespace {

using namespace ModbusDeviceModel;
using Registers = std::vector<std::uint16_t>;

// The same registers, decoded by this library into JSON and by libmodbus' getters into a number. report.py has pymodbus
// decode them by the row's name; the label tells it the registers, and the value that must come out.
struct Row {
    const char* name;
    int code;
    ByteOrderingEnum order;
    Registers registers;
    double (*getter)(const std::uint16_t* registers);
};

constexpr auto BIG = ByteOrderingEnum::DEVICE_ORDER;
constexpr auto LITTLE = ByteOrderingEnum::LITTLE_ENDIAN_WORDS;

// clang-format off
const Row ROWS[] = {
    {"uint16", 2, BIG, {0x1234}, [](const std::uint16_t* r) -> double { return r[0]; }},
    {"int32", 13, BIG, {0xFFFF, 0x5678},
     [](const std::uint16_t* r) -> double { return MODBUS_GET_INT32_FROM_INT16(r, 0); }},
    {"int64", 24, BIG, {0, 0x1234, 0x5678, 0x9ABC},
     [](const std::uint16_t* r) { return static_cast<double>(MODBUS_GET_INT64_FROM_INT16(r, 0)); }},
    {"float32", 31, BIG, {0x4247, 0xF000},
     [](const std::uint16_t* r) -> double { return modbus_get_float_abcd(r); }},
    {"float32-swapped", 31, LITTLE, {0xF000, 0x4247},
     [](const std::uint16_t* r) -> double { return modbus_get_float_cdab(r); }},
};
// clang-format on

std::string LabelOf(const Row& row, double value) {
    return Test::json{{"registers", row.registers}, {"value", value}}.dump();
}

void Library(benchmark::State& state, const Row& row) {
    Test::ElementData element = Test::MakeElement({.code = row.code, .order = row.order});
    unsigned char buffer[256];
    bool invalid = false;
    Test::json value;
    for (auto _ : state) {
        unsigned char* end = buffer;
        for (const std::uint16_t word : row.registers) {
            *end++ = static_cast<unsigned char>(word >> 8);
            *end++ = static_cast<unsigned char>(word & 0xFF);
        }
        element.Build(buffer, static_cast<unsigned>(end - buffer), true, 2000, invalid, value, nullptr);
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel(LabelOf(row, value.get<double>()));
}

void Libmodbus(benchmark::State& state, const Row& row) {
    const std::uint16_t* registers = row.registers.data();
    double value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(registers);
        value = row.getter(registers);
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel(LabelOf(row, value));
}

const bool REGISTERED = [] {
    for (const Row& row : ROWS) {
        const std::string name = std::string("peer/") + row.name;
        benchmark::RegisterBenchmark((name + "/library").c_str(), Library, row);
        benchmark::RegisterBenchmark((name + "/libmodbus").c_str(), Libmodbus, row);
    }
    return true;
}();

}  // namespace
}  // namespace kzm::Benchmark
