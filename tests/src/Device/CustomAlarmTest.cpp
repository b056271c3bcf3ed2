#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/ConstantComputedAlarmOperand.h"
#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"
#include "Device/DeviceModel.h"
#include "Device/DynamicVorta.h"
#include "src/TestCache.h"
#include "src/TestChain.h"

namespace kzm::ModbusDeviceModel::Test::CustomAlarmTest {

using namespace Device;

std::shared_ptr<ComputedAlarmElement> MakeAlarm(const json& result, const char* priority, bool hasChanged = false) {
    const auto constant = std::make_shared<ConstantComputedAlarmOperand>("a", 1);
    std::shared_ptr<ComputedAlarmOperand> other = constant;
    if (hasChanged) {
        other = std::make_shared<PreviousMeasurementComputedAlarmOperand>("b", "previous");
    }
    return std::make_shared<ComputedAlarmElement>("the name", hasChanged, priority, "the description", "the type",
                                                  MakeChain({{}}, 0, result), constant, other);
}

const json STRUCTURE = json::parse(R"({"elements": {
    "state": {"value": "old", "datetime": "old", "quality": "old"}, "criticality": {"value": null},
    "type": {"value": null}, "customer_alarm_name": {"value": null}, "customer_alarm_description": {"value": null}}})");

TEST(CustomAlarm, IsWrittenWhereItsLeavesAre) {
    const StoppedClock clock(NOW);
    CapturedLog log(OrbaLogLevel::ERROR);
    const DeviceModel model(DeviceModel::ObjectAdapters{}, {}, {}, {},
                            {{{"Alarm", "active"}, MakeAlarm(true, "HIGH")},
                             {{"Alarm", "number"}, MakeAlarm(5, "medium")},
                             {{"Alarm", "first"}, MakeAlarm(true, "MEDIUM", true)}},
                            true);
    const auto previous = std::make_shared<PreviousMeasurements::element_type>();
    const auto fill = [&](const char* alias, json value) {
        VortaORBAObject object("id", "Alarm", alias, std::move(value));
        const auto status = model.GetCustomAlarmVortaObjectValue(nullptr, false, object, previous);
        return std::pair(Number(status), object.GetValue());
    };
    const auto state = [](const char* value, const char* datetime, const char* quality, const char* criticality) {
        json expected = STRUCTURE;
        expected["elements"]["state"] = {{"value", value}, {"datetime", datetime}, {"quality", quality}};
        expected["elements"]["criticality"]["value"] = criticality;
        expected["elements"]["type"]["value"] = "the type";
        expected["elements"]["customer_alarm_name"]["value"] = "the name";
        expected["elements"]["customer_alarm_description"]["value"] = "the description";
        return std::pair(0, expected);
    };
    EXPECT_EQ(fill("active", STRUCTURE), state("Active", NOW_TEXT, "Good", "High"));
    EXPECT_EQ(fill("first", STRUCTURE), state("Inactive", NOW_TEXT, "Bad", "Medium"));
    EXPECT_EQ(fill("number", STRUCTURE), state("old", "old", "Bad", "Low"));
    log.Clear();
    EXPECT_EQ(fill("active", json::object()), std::pair(28, json::object()));
    EXPECT_EQ(fill("active", nullptr), std::pair(28, json()));
    EXPECT_EQ(fill("active", json::parse(R"({"elements": {"criticality": {}, "type": {"value": 1}}})")),
              std::pair(28, json::parse(R"({"elements": {"criticality": {}, "type": {"value": "the type"}}})")));
    EXPECT_EQ(fill("other", STRUCTURE), std::pair(1, STRUCTURE));
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[Device::DeviceModel] [GetCustomAlarmVortaObjectValue] Missing elements in custom device VORTA response structure
[Device::DeviceModel] [GetCustomAlarmVortaObjectValue] Missing elements in custom device VORTA response structure
[Device::DeviceModel] [GetCustomAlarmVortaObjectValue] Missing elements in custom device VORTA response structure
[Device::DeviceModel] [GetCustomAlarmVortaObjectValue] Custom alarm not found : id)");

    bool instantaneous = true;
    EXPECT_EQ(Number(model.GetComputedAlarmInstantaneousness({"Alarm", "none"}, instantaneous)), 28);
    EXPECT_TRUE(instantaneous);
    EXPECT_EQ(Number(model.GetComputedAlarmInstantaneousness({"Alarm", "first"}, instantaneous)), 0);
    EXPECT_FALSE(instantaneous);
    EXPECT_EQ(Number(model.GetComputedAlarmInstantaneousness({"Alarm", "active"}, instantaneous)), 0);
    EXPECT_TRUE(instantaneous);
}

TEST(ServiceMapping, BindsAServicesElementsToTheFrames) {
    CapturedLog log(OrbaLogLevel::INFORMATION);
    const auto holding = ModbusFunctionCode::READ_HOLDING_REGISTERS;
    std::vector<FrameData> frames{{holding, false, 0, 3, std::uint16_t{40}},
                                  {holding, false, 0, 2, std::vector<std::uint16_t>{9, 7}},
                                  {holding, false, 0}};
    const auto element = std::make_shared<ElementData>(MakeElement({}));
    auto sources = std::make_shared<DeviceModel::ServiceSources>();
    (*sources)[{"ab", "c"}] = std::make_shared<ServiceSourceMapping>(static_cast<ServiceImpl::ServiceIdentifier>(5),
                                                                     std::list<std::shared_ptr<ElementData>>{element});
    (*sources)[{"null", ""}] = nullptr;
    const DeviceModel model(std::shared_ptr<DeviceModel::Elements>(), std::vector<FrameData>(frames),
                            std::move(sources), true);
    const auto mapping = model.GetServiceMapping("ab", "c");
    EXPECT_EQ(mapping.serviceIdentifier, static_cast<ServiceImpl::ServiceIdentifier>(5));
    EXPECT_EQ(mapping.elements.front(), element);
    EXPECT_EQ(mapping.frames, &model.GetFrames());
    for (const auto& [name, alias] : {std::pair("a", "bc"), std::pair("null", "")}) {
        const auto unknown = model.GetServiceMapping(name, alias);
        EXPECT_EQ(static_cast<int>(unknown.serviceIdentifier), -1);
        EXPECT_TRUE(unknown.elements.empty());
    }
    const DeviceModel without(DeviceModel::ObjectAdapters{}, std::move(frames), {}, {}, {}, true);
    without.GetServiceMapping("a", "b");
    EXPECT_EQ(log.Joined(), R"(
6[Device::DeviceModel] DeviceModel::GetServiceMapping ab.c found
4[Device::DeviceModel] DeviceModel::GetServiceMapping a.bc NOT FOUND
4[Device::DeviceModel] DeviceModel::GetServiceMapping null. NOT FOUND
4[Device::DeviceModel] DeviceModel::GetServiceMapping a.b NOT FOUND (NO SERVICE MAPPING))");

    const auto range = mapping.BuildFrameDataValue(0), list = mapping.BuildFrameDataValue(1);
    EXPECT_EQ(range->mFunctionCode, ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS);
    EXPECT_EQ(range->mStartAddress, 40);
    EXPECT_EQ(range->mValues, std::vector<std::uint16_t>(3));
    EXPECT_EQ(list->mStartAddress, 9);
    EXPECT_EQ(mapping.BuildFrameDataValue(2)->mStartAddress, 0);
    EXPECT_THROW(mapping.BuildFrameDataValue(3), std::out_of_range);
}

TEST(DynamicVorta, KeepsASortedListForEachOfNineCategories) {
    const auto category = [](std::uint32_t number) { return static_cast<VortaObjectCategory>(number); };
    using enum VortaObjectCategory;
    std::uint32_t next = 0;
    for (const VortaObjectCategory named :
         {CATEGORY_0, CATEGORY_1, CATEGORY_2, CATEGORY_3, CATEGORY_4, CATEGORY_5, CATEGORY_6, CATEGORY_7, CATEGORY_8}) {
        EXPECT_EQ(named, category(next++));
    }
    DynamicVorta::Table table;
    EXPECT_TRUE(DynamicVorta::GetVortaSubgraph(table, category(2)).empty());
    DynamicVorta::SetVortaSubgraph(table, category(2), {"b", "a", "a"});
    EXPECT_EQ(table.size(), 9U);
    EXPECT_EQ(DynamicVorta::GetVortaSubgraph(table, category(2)), (std::vector<std::string>{"a", "a", "b"}));
    EXPECT_TRUE(DynamicVorta::FindObject(table, category(2), "b"));
    EXPECT_FALSE(DynamicVorta::FindObject(table, category(2), "c"));
    EXPECT_FALSE(DynamicVorta::IsSubgraphAvailable(table, category(3)));
    EXPECT_FALSE(DynamicVorta::FindObject(table, category(10), "a"));
    EXPECT_THROW(DynamicVorta::SetVortaSubgraph(table, category(9), {"a"}), std::out_of_range);
    DynamicVorta::Table growing{{"d", "c"}};
    DynamicVorta::SetVortaSubgraph(growing, category(5), growing[0]);
    EXPECT_EQ(growing[5], (std::vector<std::string>{"c", "d"}));

    DeviceModel model(DeviceModel::ObjectAdapters{}, {}, {}, {}, {}, true);
    EXPECT_FALSE(model.IsSubgraphAvailable(category(8)));
    model.SetEdmType();
    model.SetVortaSubgraph(category(8), {"x"});
    EXPECT_TRUE(model.FindObject(category(8), "x"));
    EXPECT_EQ(model.GetVortaSubgraph(category(8)).size(), 1U);
    model.SetVortaSubgraph(category(8), {});
    EXPECT_FALSE(model.IsSubgraphAvailable(category(8)));
}

}  // namespace kzm::ModbusDeviceModel::Test::CustomAlarmTest
