#include <algorithm>
#include <iostream>

#include "DataModel/AttributeConverter.h"
#include "DataModel/DataObjectAdapter.h"
#include "Device/DeviceModel.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/DateTime/DateTime.h"

using namespace kzm::ModbusDeviceModel;

namespace {

// Holds one frame of one register.
class OneFrameCache : public DeviceCache::CacheReadAccessInterface {
public:
    std::uint32_t ReadFrame(const std::uint8_t&, const std::uint16_t&, std::uint8_t count, std::uint8_t* buffer,
                            std::uint32_t capacity, DeviceCache::_Quality_t& quality) const override {
        static constexpr std::uint8_t BYTES[] = {0x01, 0xCD};
        quality = DeviceCache::QUALITY_GOOD;
        const std::uint32_t length = std::min({2u, 2u * count, capacity});
        std::copy_n(BYTES, length, buffer);
        return length;
    }
    std::uint64_t GetFrameTimestamp(std::uint8_t) const override {
        return kzm::DateTime::DateTime::GetRealTimeInMilliseconds();
    }
};

}  // namespace

int main() {
    const auto mask = std::make_shared<std::vector<std::uint8_t>>(2, std::uint8_t{0xFF});
    const auto voltage = std::make_shared<DataModel::AttributeConverter>(
        std::uint16_t{3027}, std::uint8_t{1}, mask, 0.5, nullptr, LogicCodeIdentifier{7}, std::uint8_t{0}, 0.0F,
        nullptr, ByteOrderingEnum::DEVICE_ORDER, /*validityCheckEnabled=*/false);
    const auto adapter = std::make_shared<DataModel::DataObjectAdapter>("", "");
    adapter->SetAdapter(DataModel::AttributeAdapterType::VALUE, voltage);

    Device::DeviceModel::ObjectAdapters adapters{{{"VoltageA", ""}, adapter}};
    std::vector<DeviceProfile::FrameData> frames{
        {ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 1, std::uint16_t{3027}}};
    const Device::DeviceModel model(std::move(adapters), std::move(frames), {}, {}, {}, /*bigEndian=*/true);

    kz::orba::VortaORBAObject object("1", "VoltageA", "", nullptr);
    const auto status = model.GetVortaObjectValue(std::make_shared<OneFrameCache>(), /*ignoreCacheAge=*/false, object);
    std::cout << object.GetValue().dump() << '\n';
    return status == kz::orba::StatusCode::OK && object.GetValue().at("value") == 230.5 ? 0 : 1;
}
