#include <gtest/gtest.h>

#include "DeviceProfile/FrameData.h"
#include "DeviceProfile/FrameDataValue.h"
#include "kzm/StandIn/CapturedLog.h"

namespace kzm::ModbusDeviceModel::DeviceProfile::FrameTest {

using Addresses = std::vector<std::uint16_t>;

constexpr auto HOLDING = ModbusFunctionCode::READ_HOLDING_REGISTERS;

FrameData ListOf(const Addresses& addresses) {
    return FrameData(HOLDING, true, -3, static_cast<std::uint16_t>(addresses.size()), addresses);
}

// What the address field points at.
Addresses PointedAt(const FrameData& frame) {
    return {frame.mAddress.mAddresses, frame.mAddress.mAddresses + frame.mLength};
}

int Add(FrameData& frame, std::uint16_t first, std::uint16_t count) {
    return static_cast<int>(frame.AddAddressesToFrame(first, count));
}

TEST(FrameData, EachConstructorMakesItsKind) {
    const FrameData range(HOLDING, true, -3, 10, std::uint16_t{4000});
    EXPECT_EQ(range.mKind, FrameKind::CONTIGUOUS);
    EXPECT_EQ(range.mSecondExtraParameter, 0xFFFFFFFF);
    const FrameData extra(HOLDING, true, -3, 10, 4000, 7U, 8U);
    EXPECT_EQ(extra.mKind, FrameKind::CONTIGUOUS_WITH_PARAMETERS);
    EXPECT_EQ(extra.mFirstExtraParameter + 10 * extra.mSecondExtraParameter, 87U);
    const FrameData list(HOLDING, true, -3, 7, Addresses{9, 5});
    EXPECT_EQ(list.mLength, 7);  // kept as given
    EXPECT_EQ(list.mAddress.mAddresses, list.mAddressList.data());
}

TEST(FrameData, AddedAddressesStandSortedAndOnce) {
    FrameData frame(HOLDING, false, 0);
    EXPECT_EQ(Add(frame, 65530, 6), 64);
    EXPECT_EQ(Add(frame, 65535, 1), 64);
    EXPECT_EQ(frame.mLength, 0);
    EXPECT_EQ(Add(frame, 65530, 5), 0);
    EXPECT_EQ(Add(frame, 65528, 4), 0);
    EXPECT_EQ(Add(frame, 1, 0), 0);
    EXPECT_EQ(Add(frame, 10, 1), 0);
    EXPECT_EQ(PointedAt(frame), (Addresses{10, 65528, 65529, 65530, 65531, 65532, 65533, 65534}));

    FrameData unsorted = ListOf({7, 3, 7, 1});
    EXPECT_EQ(Add(unsorted, 4, 1), 0);
    EXPECT_EQ(PointedAt(unsorted), (Addresses{1, 3, 4, 7}));

    const Addresses callers{1, 2, 3};
    FrameData borrowed(HOLDING, false, 0, 3, callers.data());
    EXPECT_EQ(Add(borrowed, 9, 2), 0);
    EXPECT_EQ(PointedAt(borrowed), (Addresses{9, 10}));

    FrameData range(HOLDING, false, 0, 10, std::uint16_t{40});
    EXPECT_EQ(Add(range, 50, 1), 28);
    EXPECT_EQ(range.mLength, 10);
}

TEST(FrameData, AFrameHoldsAHundredAddresses) {
    FrameData frame(HOLDING, false, 0);
    EXPECT_EQ(Add(frame, 0, 99), 0);
    EXPECT_EQ(Add(frame, 98, 3), 28);  // 98 is there, 99 fits, 100 does not
    EXPECT_EQ(frame.mLength, 100);
    EXPECT_EQ(PointedAt(frame).back(), 99);
    EXPECT_EQ(Add(frame, 0, 100), 0);
    EXPECT_EQ(Add(frame, 200, 1), 28);
}

TEST(FrameData, ACopyPointsIntoItsOwnListOnlyIfTheOriginalDid) {
    auto own = std::make_unique<FrameData>(ListOf({5, 6}));
    const FrameData copy(*own);
    FrameData assigned(HOLDING, false, 0, 1, std::uint16_t{0});
    assigned = *own;
    const FrameData moved(std::move(*own));
    EXPECT_EQ(own->mLength, 0);
    EXPECT_EQ(PointedAt(*own), Addresses{});
    own.reset();
    for (const FrameData* const frame : {&copy, static_cast<const FrameData*>(&assigned), &moved}) {
        EXPECT_EQ(PointedAt(*frame), (Addresses{5, 6}));
        EXPECT_EQ(frame->mSignedParameter, -3);
        EXPECT_EQ(frame->mAddress.mAddresses, frame->mAddressList.data());
    }
    const FrameData& self = assigned;
    assigned = self;
    EXPECT_EQ(PointedAt(assigned), (Addresses{5, 6}));

    const Addresses callers{1, 2};
    const FrameData borrowed(HOLDING, false, 0, 2, callers.data());
    EXPECT_EQ(FrameData(borrowed).mAddress.mAddresses, callers.data());
    FrameData range(HOLDING, false, 0, 10, std::uint16_t{40});
    EXPECT_EQ(FrameData(std::move(range)).mAddress.mAddress, 40);
    EXPECT_EQ(range.mAddress.mAddress, 0);
}

TEST(FrameDataValue, RegistersAreSetOnlyWithinTheFrame) {
    FrameDataValue value(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, 100, 4);
    const Addresses numbers{1, 2, 3};
    EXPECT_FALSE(value.SetValue(100, nullptr, 1, nullptr));
    EXPECT_FALSE(value.SetValue(99, numbers.data(), 1, nullptr));
    EXPECT_FALSE(value.SetValue(102, numbers.data(), 3, nullptr));
    EXPECT_FALSE(value.SetValue(104, 1));
    EXPECT_TRUE(value.SetValue(104, numbers.data(), 0, nullptr));
    EXPECT_EQ(value.mValues, Addresses(4));
    EXPECT_TRUE(value.SetValue(101, numbers.data(), 3, nullptr));
    EXPECT_TRUE(value.SetValue(100, 9));
    EXPECT_EQ(value.mValues, (Addresses{9, 1, 2, 3}));
    EXPECT_EQ(FrameDataValue().mValues.size(), 0U);
}

TEST(FrameDataValue, AMaskAddsBitsAndNeverClearsThem) {
    StandIn::CapturedLog log;
    FrameDataValue value(ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, 100, 2);
    const Addresses numbers{0x0F0F, 0xFFFF};
    value.SetValue(100, 0x00F0);
    const std::vector<std::uint8_t> mask{0x0F, 0x00}, whole{0, 0, 0, 0xF0}, odd{1, 2, 3}, tooLong(6), none;
    EXPECT_TRUE(value.SetValue(100, numbers.data(), 2, &mask));
    EXPECT_TRUE(value.SetValue(100, numbers.data(), 2, &whole));
    EXPECT_TRUE(value.SetValue(100, numbers.data(), 2, &none));
    EXPECT_TRUE(value.SetValue(100, numbers.data(), 2, &odd));
    EXPECT_TRUE(value.SetValue(100, numbers.data(), 2, &tooLong));
    EXPECT_EQ(value.mValues, (Addresses{0x0FF0, 0x00F0}));
    EXPECT_EQ(log.Joined(Log::OrbaLogLevel::ERROR), R"(
[FrameDataValue] SetValue bitmask is not even
[FrameDataValue] SetValue bitmask (3) is bigger than value (2))");
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile::FrameTest
