#include "gateway/cache/RegisterCache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace kzm::ModbusGateway::RegisterCacheTest {

using namespace ModbusDeviceModel;
using namespace ModbusDeviceModel::DeviceCache;
using DeviceProfile::FrameData;
using Bytes = std::vector<std::uint8_t>;
using Registers = std::vector<std::uint16_t>;

constexpr auto HOLDING = ModbusFunctionCode::READ_HOLDING_REGISTERS;

const std::array<std::uint16_t, 5> LIST{40, 21, 20, 22, 40};
const std::vector<FrameData> FRAMES{
    FrameData(HOLDING, false, 0, 4, std::uint16_t{100}),
    FrameData(HOLDING, false, 0, 5, LIST.data()),
    FrameData(HOLDING, false, 0, 4, std::uint16_t{65534}),              // ends with the last register
    FrameData(HOLDING, false, 0, 9, std::vector<std::uint16_t>{5, 6}),  // a length its list does not have
    FrameData(HOLDING, false, 0, 4, static_cast<const std::uint16_t*>(nullptr)),
    FrameData(HOLDING, false, 0, 4, std::uint16_t{100}),  // never received
};

TEST(RegisterCache, GivesExactlyTheRegistersOfTheFrame) {
    RegisterCache cache(FRAMES);
    cache.Update(0, Registers{0x0102, 0x0304, 0xF5F6, 0x0708}, 1000);
    cache.Update(1, Registers{0x4040, 0x2121, 0x2020, 0x2222, 0x4141}, 1000);
    cache.Update(2, Registers{0xFEFE, 0xFFFF}, 1000);
    cache.Update(3, Registers{0x0505, 0x0606}, 1000);
    cache.Update(4, Registers{}, 1000);
    // Frame, address, count, capacity of the buffer, expected data (empty: refused).
    // clang-format off
    const std::tuple<std::uint8_t, std::uint16_t, std::uint8_t, std::uint32_t, Bytes> rows[] = {
        {0, 100, 4, 256, {1, 2, 3, 4, 0xF5, 0xF6, 7, 8}}, {0, 102, 1, 2, {0xF5, 0xF6}},
        {0, 100, 2, 3, {}},  // more than the buffer holds
        {0, 99, 1, 256, {}}, {0, 99, 2, 256, {}}, {0, 103, 2, 256, {}}, {0, 104, 1, 256, {}}, {0, 100, 0, 256, {}},
        {1, 20, 3, 256, {0x20, 0x20, 0x21, 0x21, 0x22, 0x22}},  // by address, whatever the order
        {1, 40, 1, 256, {0x40, 0x40}},  // the first of an address listed twice
        {1, 22, 2, 256, {}}, {1, 19, 2, 256, {}}, {1, 41, 1, 256, {}},
        {2, 65534, 2, 256, {0xFE, 0xFE, 0xFF, 0xFF}}, {2, 65535, 2, 256, {}}, {3, 5, 2, 256, {5, 5, 6, 6}},
        {4, 0, 1, 256, {}}, {5, 100, 1, 256, {}}, {6, 100, 1, 256, {}}, {255, 100, 1, 256, {}}};
    // clang-format on
    for (const auto& [frame, address, count, capacity, expected] : rows) {
        Bytes buffer(capacity + 1, 0xEE);
        RegisterCache::Quality quality = QUALITY_BAD;
        const std::uint32_t size = cache.ReadFrame(frame, address, count, buffer.data(), capacity, quality);
        SCOPED_TRACE(testing::Message() << "frame " << +frame << " address " << address << " count " << +count);
        EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + size), expected);
        EXPECT_EQ(quality, expected.empty() ? QUALITY_UNINITIALISED : QUALITY_GOOD);
        EXPECT_EQ(std::count(buffer.begin() + size, buffer.end(), 0xEE), capacity + 1 - size);
    }
}

TEST(RegisterCache, KeepsWhatAFrameHeldWhenItIsMarkedOrRefused) {
    RegisterCache cache(FRAMES);
    cache.Update(0, Registers{1, 2, 3, 4}, 1000, QUALITY_QUESTIONABLE);
    cache.SetQuality(0, QUALITY_BAD);
    cache.SetQuality(5, QUALITY_BAD);
    EXPECT_THROW(cache.Update(0, Registers{1, 2, 3}, 2000), std::invalid_argument);
    EXPECT_THROW(cache.Update(6, Registers{}, 2000), std::out_of_range);
    EXPECT_THROW(cache.SetQuality(6, QUALITY_BAD), std::out_of_range);
    EXPECT_THROW(cache.GetFrame(6), std::out_of_range);
    EXPECT_EQ(cache.GetFrame(0).registers, (Registers{1, 2, 3, 4}));
    EXPECT_EQ(cache.GetFrame(0).quality, QUALITY_BAD);
    EXPECT_EQ(cache.GetFrame(5).quality, QUALITY_UNINITIALISED);  // never received stays so
    EXPECT_EQ(cache.GetFrameTimestamp(0), 1000U);
    EXPECT_EQ(cache.GetFrameTimestamp(5), 0U);
    EXPECT_EQ(cache.GetFrameTimestamp(6), 0U);
}

}  // namespace kzm::ModbusGateway::RegisterCacheTest
