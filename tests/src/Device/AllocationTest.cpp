#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "kz/orba/VortaORBAObject.h"
#include "src/TestCache.h"

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

// None of them is inlined, else GCC sees memory of one allocator go to another and warns.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace kzm::ModbusDeviceModel::Test {

using namespace DataModel;
using kz::orba::VortaORBAObject;
using StandIn::StoppedClock;

// A request that finds the attributes in place allocates for the texts that it writes into them, and for nothing else.
TEST(DeviceModel, ARequestAllocatesOnlyItsJsonTexts) {
    const StoppedClock clock(NOW);
    const std::shared_ptr<CacheReadAccessInterface> cache = MakeCache("00010002");
    const auto adapter = std::make_shared<DataObjectAdapter>("", "urn");
    adapter->SetAdapter(VALUE, MakeConverter({.code = 14, .registers = 2}));
    const std::string name = "ElectricalMeasurement.RmsCurrentPhsA";
    const Device::DeviceModel model(Device::DeviceModel::ObjectAdapters{{{name, ""}, adapter}}, {}, {}, {}, {}, true);
    VortaORBAObject object("id", name, "", nullptr);
    ASSERT_EQ(Number(model.GetVortaObjectValue(cache, false, object)), 0);
    auto element = MakeElement({.code = 14, .pattern = "0x80000000"});
    auto quality = QUALITY_GOOD;
    json value;

    std::size_t before = allocations;
    ASSERT_EQ(Number(AttributeConverter::GetValueFromElementData(cache, true, false, element, quality, value)), 0);
    EXPECT_EQ(allocations - before, 0U);

    before = allocations;
    const json texts[] = {json("Good"), json(std::string(NOW_TEXT))};
    const std::size_t forTexts = allocations - before;
    before = allocations;
    ASSERT_EQ(Number(model.GetVortaObjectValue(cache, false, object)), 0);
    EXPECT_EQ(allocations - before, forTexts);
}

}  // namespace kzm::ModbusDeviceModel::Test
