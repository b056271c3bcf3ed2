#include "Allocator.h"
#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test {

using Testing::CountAllocations;

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

    std::size_t before = CountAllocations();
    ASSERT_EQ(Number(AttributeConverter::GetValueFromElementData(cache, true, false, element, quality, value)), 0);
    EXPECT_EQ(CountAllocations() - before, 0U);

    before = CountAllocations();
    const json texts[] = {json("Good"), json(std::string(NOW_TEXT))};
    const std::size_t forTexts = CountAllocations() - before;
    before = CountAllocations();
    ASSERT_EQ(Number(model.GetVortaObjectValue(cache, false, object)), 0);
    EXPECT_EQ(CountAllocations() - before, forTexts);
}

}  // namespace kzm::ModbusDeviceModel::Test
