#include "Device/DeviceModel.h"

#include <future>

#include "DataModel/AttributeConstant.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test::DeviceModelTest {

using Device::DeviceModel;

const std::string NAME = "ElectricalMeasurement.RmsCurrentPhsA";

std::unique_ptr<DeviceModel> MakeModel(bool bigEndian = true) {
    DeviceModel::ObjectAdapters adapters{{{NAME, ""}, ObjectOf({.code = 14, .registers = 2})},
                                         {{NAME, "second"}, ObjectOf({})},
                                         {{"null", ""}, nullptr}};
    return std::make_unique<DeviceModel>(
        std::move(adapters),
        std::vector<FrameData>{{ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 2, std::uint16_t{100}}},
        DeviceModel::TextByName{{NAME, "A"}}, DeviceModel::TextByName{}, DeviceModel::ComputedAlarms{}, bigEndian);
}

TEST(DeviceModel, FillsTheObjectOfThatNameAndAlias) {
    const StoppedClock clock(NOW);
    const auto cache = MakeCache("00010002");
    for (const auto& [alias, bigEndian, expected] :
         {std::tuple{"", true, 65538}, {"", false, 131073}, {"second", true, 2}}) {
        VortaORBAObject object("id", NAME, alias, nullptr);
        EXPECT_EQ(Number(MakeModel(bigEndian)->GetVortaObjectValue(cache, false, object)), 0);
        EXPECT_EQ(object.GetValue()["value"], expected);
    }
}

TEST(DeviceModel, WhatItDoesNotHoldIsAStatus) {
    CapturedLog log;
    auto model = MakeModel();
    model->SetModelName("PM");
    const auto ask = [&](const char* name, const char* alias) {
        VortaORBAObject object("id", name, alias, "before");
        const auto status = model->GetVortaObjectValue(nullptr, false, object);
        EXPECT_EQ(object.GetValue(), "before");
        return Number(status);
    };
    EXPECT_EQ(ask(NAME.c_str(), "third"), 44);
    EXPECT_EQ(ask("null", ""), 1);
    EXPECT_EQ(log.Lines().at(0).text,
              "[Device::DeviceModel][trace] GetVortaObjectValue: VortaObjectAdapter not found for 'PM', iot name ='" +
                  NAME + "', status = not found (44)");
    EXPECT_EQ(log.Lines().at(1).text,
              "[Device::DeviceModel] GetVortaObjectValue: Object adapter is null for 'PM', iot name = 'null'");
    std::string unit = "before";
    EXPECT_EQ(Number(model->GetUnit("null", unit)), 44);
    EXPECT_EQ(unit, "");
    EXPECT_EQ(Number(model->GetUnit(NAME, unit)), 0);
    EXPECT_EQ(unit, "A");
    EXPECT_TRUE(model->GetElements(NAME, "").empty());
    EXPECT_EQ(model->GetComputedAlarmElement({NAME, ""}), nullptr);
    EXPECT_EQ(model->GetFrames().size(), 1U);
    log.Clear();
    model.reset();
    int cancellation = PTHREAD_CANCEL_DISABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &cancellation);
    EXPECT_EQ(cancellation, PTHREAD_CANCEL_ENABLE);
    EXPECT_EQ(log.Joined(OrbaLogLevel::INFORMATION), R"(
[Device::DeviceModel] DeviceModel::~DeviceModel Called)");
}

TEST(DeviceModel, OfElementsHasNoObjects) {
    auto elements = std::make_shared<DeviceModel::Elements>();
    elements->emplace(DeviceModel::Key{NAME, "a"}, std::make_shared<ElementData>(MakeElement({.code = 3})));
    elements->emplace(DeviceModel::Key{NAME, "a"}, std::make_shared<ElementData>(MakeElement({.code = 4})));
    const DeviceModel model(elements, {}, {}, {}, {}, true);
    EXPECT_EQ(model.GetElements(NAME, "a").size(), 2U);
    EXPECT_TRUE(model.GetElements(NAME, "").empty());
    const DeviceModel serving(std::move(elements), {}, nullptr, false);
    EXPECT_EQ(serving.GetElements(NAME, "a").size(), 2U);
    VortaORBAObject object("id", NAME, "a", nullptr);
    EXPECT_EQ(Number(serving.GetVortaObjectValue(nullptr, false, object)), 44);
    EXPECT_NE(std::hash<ObjectKey>{}({"b", "a"}), std::hash<ObjectKey>{}({"a", "b"}));
    EXPECT_EQ(pair_hash{}({"b", "a"}), pair_hash{}({"a", "b"}));
}

TEST(DeviceModel, ReplacesItsIdentificationWholeAndKeepsWhoDefinedIt) {
    auto model = MakeModel();
    model->SetIdentification({{"a", "1"}, {"b", "2"}});
    model->SetIdentification(model->GetIdentification());
    EXPECT_EQ(model->GetIdentification().size(), 2U);
    model->SetIdentification({{"c", "3"}});
    EXPECT_EQ(model->GetIdentification(), (std::map<std::string, std::string>{{"c", "3"}}));
    model->SetUserDefinedModel(true);
    EXPECT_TRUE(model->IsUserDefinedModel());
}

TEST(DeviceModel, AnAdapterMayReleaseTheModelDuringItsRequest) {
    struct Releasing : VortaObjectAdapter, std::enable_shared_from_this<Releasing> {
        StatusCode GetObject(const std::shared_ptr<CacheReadAccessInterface>&, bool, bool, VortaORBAObject&) override {
            const auto self = weak_from_this();
            model.reset();
            return static_cast<StatusCode>(self.expired() ? 1 : 0);
        }
        std::set<std::uint8_t>& GetFrameIndexes() override { return frames; }
        StatusCode ComputeFrameIndexes() override { return {}; }
        Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override { return {}; }

        std::unique_ptr<DeviceModel> model;
        std::set<std::uint8_t> frames;
    };
    auto adapter = std::make_shared<Releasing>();
    adapter->model = std::make_unique<DeviceModel>(DeviceModel::ObjectAdapters{{{"a", ""}, adapter}},
                                                   std::vector<FrameData>{}, DeviceModel::TextByName{},
                                                   DeviceModel::TextByName{}, DeviceModel::ComputedAlarms{}, true);
    const DeviceModel& model = *adapter->model;
    const std::weak_ptr<Releasing> alive = std::exchange(adapter, nullptr);
    VortaORBAObject object("id", "a", "", nullptr);
    EXPECT_EQ(Number(model.GetVortaObjectValue(nullptr, false, object)), 0);
    EXPECT_TRUE(alive.expired());
}

// A sink that throws loses its line; one that hangs blocks only requests that log.
TEST(ThreadsDeviceModel, ALogSinkThatFailsOrHangsStopsNoRequest) {
    const StoppedClock clock(NOW);
    const std::shared_ptr<CacheReadAccessInterface> cache = MakeCache("00010002");
    const auto model = MakeModel();
    const auto ask = [&](const char* name) {
        VortaORBAObject object("id", name, "", json::object());
        const auto status = model->GetVortaObjectValue(cache, false, object);
        return std::to_string(Number(status)) + object.GetValue().value("quality", "");
    };
    const CapturedLog restoring(OrbaLogLevel::TRACE);
    auto& logger = Log::RootLogger::GetInstance();
    logger.SetSink([](auto, const char*) { throw std::runtime_error("disk full"); });
    EXPECT_EQ(ask(NAME.c_str()), "0Good");
    logger.SetLevel(OrbaLogLevel::ERROR);
    std::promise<void> hanging, released;
    logger.SetSink([&](auto, const char*) {
        hanging.set_value();
        released.get_future().wait();
    });
    auto waiting = std::async(std::launch::async, ask, "null");
    hanging.get_future().wait();
    EXPECT_EQ(ask(NAME.c_str()), "0Good");
    EXPECT_EQ(waiting.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    released.set_value();
    EXPECT_EQ(waiting.get(), "1");
}

}  // namespace kzm::ModbusDeviceModel::Test::DeviceModelTest
