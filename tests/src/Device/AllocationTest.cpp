#include "Allocator.h"
#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/MeasurementComputedAlarmOperand.h"
#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"
#include "Device/DeviceModel.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test {

using Testing::CountAllocations;

// Once an object has its attributes, a request allocates only the texts that it writes into them.
TEST(DeviceModel, ARequestAllocatesOnlyItsJsonTexts) {
    const StoppedClock clock(NOW);
    const std::shared_ptr<CacheReadAccessInterface> cache = MakeCache("00010002");
    const auto adapter = ObjectOf({.code = 14, .registers = 2});
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

// The chain takes five seconds, so the date-time is formatted again after the previous value was replaced.
TEST(CustomAlarm, AnOutcomeIsWrittenWhereverItsPreviousValueWasReplaced) {
    const StoppedClock clock(NOW);
    const CapturedLog quiet(OrbaLogLevel::NONE);
    struct SlowChain : ProcessingChain {
        SlowChain() : ProcessingChain({{}}, "slow", false) {}
        StatusCode Process(const json&, json& result) const override {
            StandIn::SetClock(NOW + 5000);
            result = true;
            return StatusCode{};
        }
    };
    const auto alarm = std::make_shared<ComputedAlarmElement>(
        "alarm", true, "HIGH", "", "", std::make_shared<SlowChain>(),
        std::make_shared<MeasurementComputedAlarmOperand>("now", std::make_shared<ElementData>(MakeElement({}))),
        std::make_shared<PreviousMeasurementComputedAlarmOperand>("before", ""));
    const Device::DeviceModel model(Device::DeviceModel::ObjectAdapters{}, {}, {}, {}, {{{"a", ""}, alarm}}, true);
    const std::shared_ptr<CacheReadAccessInterface> cache = MakeCache("0007");
    const auto previous = std::make_shared<PreviousMeasurements::element_type>();
    const json structure = {{"elements", {{"state", {{"value", "old"}, {"datetime", "old"}, {"quality", "old"}}}}}};
    VortaORBAObject object("id", "a", "", nullptr);
    const auto prepare = [&] {
        StandIn::SetClock(NOW);
        (*previous)["alarm"] = {5, QUALITY_GOOD, NOW};
        object.GetValue() = structure;
    };
    const auto state = [&](const char* leaf) { return object.GetValue()["elements"]["state"][leaf]; };
    const std::string late = "2023-11-14T22:13:25.000Z";
    std::size_t early = 0;
    prepare();
    EXPECT_EQ(Number(model.GetCustomAlarmVortaObjectValue(cache, false, object, previous)), 0);
    EXPECT_EQ(state("datetime"), late) << "the date-time is that after the evaluation";
    prepare();
    Testing::RunShortOfMemory([&] { model.GetCustomAlarmVortaObjectValue(cache, false, object, previous); },
                              [&] {
                                  if (previous->at("alarm").value == 7) {
                                      early += state("datetime") == NOW_TEXT ? 1 : 0;
                                      EXPECT_TRUE(state("datetime") == NOW_TEXT || state("datetime") == late);
                                      EXPECT_EQ(state("value"), "Active");
                                      EXPECT_EQ(state("quality"), "Good");
                                  } else {
                                      EXPECT_EQ(state("value"), "old");
                                  }
                                  prepare();
                              });
    EXPECT_EQ(early, 2U);
}

TEST(ElementData, DecodingAllocatesOnlyTheTextThatComesOut) {
    const std::pair<int, const char*> rows[] = {{62, "53657269616C204E6F2E203132333400"},
                                                {43, "65536972616C204E"},
                                                {44, "0019060C091E2328"},
                                                {47, "060C7D091E0900FA"},
                                                {56, "3039"},
                                                {57, "12345678"},
                                                {58, "3F400000"}};
    for (const auto& [code, registers] : rows) {
        ElementData element = MakeElement({.code = code});
        Bytes bytes = Hex(registers);
        bool invalid = false;
        json value;
        std::size_t before = CountAllocations();
        ASSERT_TRUE(
            element.Build(bytes.data(), static_cast<unsigned>(bytes.size()), true, 2000, invalid, value, nullptr));
        const std::size_t taken = CountAllocations() - before;
        const auto text = value.get<std::string>();
        before = CountAllocations();
        const json alone = std::string(text);
        EXPECT_EQ(taken, CountAllocations() - before) << "code " << code;
    }
}

}  // namespace kzm::ModbusDeviceModel::Test
