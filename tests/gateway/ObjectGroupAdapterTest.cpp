#include "gateway/ObjectGroupAdapter.h"

#include <gtest/gtest.h>

#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusGateway {

namespace {

using kz::orba::StatusCode;

class ScriptedAdapter final : public ModbusDeviceModel::DataModel::VortaObjectAdapter {
public:
    ScriptedAdapter(int status, std::uint8_t frame) : mStatus(static_cast<StatusCode>(status)), mFrame(frame) {}
    StatusCode GetObject(const std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>&, bool, bool,
                         kz::orba::VortaORBAObject& object) override {
        object.AddOrUpdateAttributeToValue(std::to_string(mFrame), true);
        return mStatus;
    }
    std::set<std::uint8_t>& GetFrameIndexes() override { return mFrames; }
    StatusCode ComputeFrameIndexes() override {
        mFrames = {mFrame};
        return mStatus;
    }
    ModbusDeviceModel::Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override {
        ModbusDeviceModel::Device::ModbusMeasurementInformation information;
        information.mRegisterAddress = mFrame;
        return information;
    }

private:
    StatusCode mStatus;
    std::uint8_t mFrame;
    std::set<std::uint8_t> mFrames;
};

TEST(ObjectGroupAdapter, AsksEveryAdapterAndGivesTheFirstFailure) {
    ObjectGroupAdapter group({std::make_shared<ScriptedAdapter>(0, 3), std::make_shared<ScriptedAdapter>(42, 1),
                              std::make_shared<ScriptedAdapter>(1, 2)});
    kz::orba::VortaORBAObject object("", "", "", nullptr);
    EXPECT_EQ(static_cast<int>(group.GetObject(nullptr, /*deviceBigEndian=*/true, /*ignoreCacheAge=*/false, object)),
              42);
    EXPECT_EQ(object.GetValue(), nlohmann::json::parse(R"({"1": true, "2": true, "3": true})"));
    EXPECT_EQ(static_cast<int>(group.ComputeFrameIndexes()), 42);
    EXPECT_EQ(group.GetFrameIndexes(), (std::set<std::uint8_t>{1, 2, 3}));
    EXPECT_EQ(group.GetModbusMeasurementInformation().mRegisterAddress, 3);
}

}  // namespace

}  // namespace kzm::ModbusGateway
