#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/ExtendedElementData.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/MeasurementComputedAlarmOperand.h"
#include "Device/DeviceModel.h"
#include "edm/modbus/Vorta.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test::MeasurementTest {

using Device::DeviceModel;

const std::string CUSTOM = "Measurement.CustomMeasurement";

std::vector<FrameData> MakeFrames(std::uint16_t count) {
    std::vector<FrameData> frames;
    for (std::uint16_t i = 0; i < count; ++i) {
        frames.emplace_back(ModbusFunctionCode::READ_INPUT_REGISTERS, false, std::int16_t{0}, std::uint16_t{10}, i);
    }
    return frames;
}

std::shared_ptr<ElementData> ElementOf(std::uint8_t frame) {
    return std::make_shared<ElementData>(MakeElement({.code = 31, .registers = 2, .frame = frame}));
}

std::shared_ptr<DeviceModel::Elements> ElementsOf(DeviceModel::Elements elements) {
    return std::make_shared<DeviceModel::Elements>(std::move(elements));
}

// Indexes of the frames, each with its first register, which is its index.
std::vector<int> Indexes(const DeviceModel::Frames& frames) {
    std::vector<int> indexes;
    for (const auto& [index, frame] : frames) {
        EXPECT_EQ(frame->mAddress.mAddress, index);
        indexes.push_back(index);
    }
    return indexes;
}

TEST(Measurement, ItsClassIsTheDictionarysUnlessThatIsOnlyNumerical) {
    const DeviceModel model(DeviceModel::ObjectAdapters{}, {}, {}, {{"mine", "my class"}, {"625", "not asked"}}, {},
                            true);
    CapturedLog log(OrbaLogLevel::ERROR);
    const auto ask = [&](const char* name) {
        std::string className = "before";
        return std::to_string(Number(model.GetClassName(name, className))) + " " + className;
    };
    EXPECT_EQ(ask("625"), "0 $iot.measurement.NumericalMeasurementValue<Float>");
    EXPECT_EQ(ask("1d"), "0 $iot.alm.GroundFaultAlarm");
    EXPECT_EQ(ask("mine"), "0 my class");
    EXPECT_EQ(ask("other"), "44 $iot.measurement.NumericalMeasurementValue");
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[Device::DeviceModel] [GetClassName] Measurement class name not found for vortaSuffix=other)");
}

TEST(Measurement, ItsInformationComesFromItsAdapterOrItsOneElement) {
    std::string custom = "my pump";
    edm::modbus::Vorta::GetCustomMeasurementNameCodec().Encode(custom);
    CapturedLog log(OrbaLogLevel::ERROR);
    const DeviceModel ofObjects(
        DeviceModel::ObjectAdapters{{{CUSTOM, "my pump"}, ObjectOf({.scale = 0.5})}, {{"null", ""}, nullptr}},
        MakeFrames(1), {{custom, "bar"}}, {}, {}, true);
    const auto pump = ofObjects.GetMeasurementInformation(custom);
    EXPECT_EQ(pump.mRegisterAddress, 100);
    EXPECT_EQ(pump.mScaleFactor, 0.5);
    EXPECT_EQ(pump.mUnit, "bar");

    auto elements = ElementsOf({{{"Measurement.BatteryVoltage", ""}, ElementOf(0)},
                                {{"two", ""}, ElementOf(0)},
                                {{"two", ""}, ElementOf(0)},
                                {{"lost", ""}, ElementOf(9)}});
    const DeviceModel ofElements(elements, MakeFrames(1), {{"625", "V"}}, {}, {}, true);
    const auto battery = ofElements.GetMeasurementInformation("625");
    EXPECT_EQ(battery.mFunctionCode, ModbusFunctionCode::READ_INPUT_REGISTERS);
    EXPECT_EQ(battery.mNumberOfRegisters, 2);
    EXPECT_EQ(battery.mUnit, "V");
    EXPECT_EQ(ofElements.GetMeasurementInformation("lost").mFunctionCode, ModbusFunctionCode{});
    EXPECT_TRUE(log.Lines().empty());
    auto inNoFrame = ElementsOf({{{"lost", ""}, ElementOf(255)}});
    const DeviceModel ofAllFrames(inNoFrame, MakeFrames(256), {}, {}, {}, true);
    EXPECT_EQ(ofAllFrames.GetMeasurementInformation("lost").mFunctionCode, ModbusFunctionCode{});

    for (const char* id : {"7b8", "7b8_z"}) {
        EXPECT_EQ(ofElements.GetMeasurementInformation(id).mNumberOfRegisters, 0);
    }
    EXPECT_EQ(ofElements.GetMeasurementInformation("two").mScaleFactor, 1.0);
    EXPECT_EQ(ofObjects.GetMeasurementInformation("null").mNumberOfRegisters, 0);
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[Device::DeviceModel] [GetMeasurementInformation] Failed to get IoT Name and Alias for shortId=7b8
[Device::DeviceModel] [GetMeasurementInformation] Failed to get IoT Name and Alias for shortId=7b8_z
[Device::DeviceModel] [GetMeasurementInformation] Failed to get Measurement Information for suffix=two, iotName='two', alias=''
[Device::DeviceModel] [GetMeasurementInformation] Failed to get Measurement Information for suffix=null, iotName='null', alias='')");
}

TEST(Measurement, DependencyFramesAreThoseOfAlarmObjectOrElements) {
    const auto operand = std::make_shared<MeasurementComputedAlarmOperand>("a", ElementOf(2));
    const auto alarm = std::make_shared<ComputedAlarmElement>("alarm", false, "LOW", "", "", nullptr, operand, operand);
    CapturedLog log;
    const DeviceModel ofObjects(DeviceModel::ObjectAdapters{{{"object", ""}, ObjectOf({.frame = 1})},
                                                            {{"alarm", ""}, ObjectOf({.frame = 1})},
                                                            {{"lost", ""}, ObjectOf({.frame = 3})},
                                                            {{"null", ""}, nullptr}},
                                MakeFrames(3), {}, {}, {{{"alarm", ""}, alarm}}, true);
    const auto ask = [&](const DeviceModel& model, const char* name, const char* alias = "") {
        return Indexes(model.GetDependencyFrame(name, alias));
    };
    using Expected = std::vector<int>;
    EXPECT_EQ(ask(ofObjects, "object"), Expected{1});
    EXPECT_EQ(ask(ofObjects, "alarm"), Expected{2});
    EXPECT_EQ(ask(ofObjects, "lost"), Expected{});
    EXPECT_EQ(ask(ofObjects, "none"), Expected{});
    EXPECT_EQ(ask(ofObjects, "null"), Expected{});
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[Device::DeviceModel] [GetDependencyFrame] VortaObjectAdapter is null for '', iot name = 'null')");
    DeviceModel::Frames frames;
    EXPECT_EQ(Number(ofObjects.GetFramesForIoTNameAndAlias("null", "", frames)), 1);
    EXPECT_EQ(Number(ofObjects.GetFramesForIoTNameAndAlias("none", "", frames)), 44);
    EXPECT_EQ(Number(ofObjects.GetFramesForIoTNameAndAlias("object", "", frames)), 0);
    EXPECT_EQ(Indexes(frames), Expected{1});

    const std::vector<LogicCodeDependency> dependencies{{"factor", "x", nullptr}, {"unknown", "", nullptr}};
    const auto power = std::make_shared<ExtendedElementData>(MakeExtended({.code = 36}, dependencies));
    auto elements = ElementsOf({{{"power", ""}, power},
                                {{"factor", "x"}, ElementOf(2)},
                                {{"factor", "x"}, ElementOf(1)},
                                {{"nowhere", ""}, ElementOf(255)},
                                {{"nowhere", ""}, nullptr}});
    const DeviceModel ofElements(elements, MakeFrames(3), {}, {}, {}, true);
    EXPECT_EQ(ask(ofElements, "power"), (Expected{0, 1, 2}));
    EXPECT_EQ(ask(ofElements, "factor", "x"), (Expected{1, 2}));
    EXPECT_EQ(ask(ofElements, "nowhere"), Expected{});

    // A model that finds its elements elsewhere holds none of them.
    struct Derived : DeviceModel {
        explicit Derived(const DeviceModel& model)
            : DeviceModel(ObjectAdapters{}, MakeFrames(1), {}, {}, {}, true), source(model) {}
        std::vector<std::shared_ptr<ElementData>> GetElements(const std::string& name,
                                                              const std::string& alias) const override {
            return source.GetElements(name, alias);
        }
        const DeviceModel& source;
    };
    EXPECT_EQ(ask(Derived(ofElements), "power"), Expected{0});
}

}  // namespace kzm::ModbusDeviceModel::Test::MeasurementTest
