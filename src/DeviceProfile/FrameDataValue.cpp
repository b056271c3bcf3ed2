#include "DeviceProfile/FrameDataValue.h"

#include <algorithm>

#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

constexpr const char* LOG_MODULE = "FrameDataValue";

}  // namespace

FrameDataValue::FrameDataValue(ModbusFunctionCode functionCode, std::uint16_t startAddress, std::uint16_t registerCount)
    : mFunctionCode(functionCode), mStartAddress(startAddress), mValues(registerCount) {}

bool FrameDataValue::SetValue(std::uint16_t address, const std::uint16_t* values, std::uint16_t count,
                              const std::vector<std::uint8_t>* bitmask) {
    if (values == nullptr || address < mStartAddress) {
        return false;
    }
    const std::size_t offset = static_cast<std::size_t>(address - mStartAddress);
    if (offset + count > mValues.size()) {
        return false;
    }
    if (bitmask == nullptr) {
        std::copy_n(values, count, mValues.data() + offset);
        return true;
    }
    if (bitmask->size() % 2 != 0) {
        KZM_LOG(ERROR, "SetValue bitmask is not even");
        return true;
    }
    const std::size_t maskWords = bitmask->size() / 2;
    if (maskWords > count) {
        KZM_LOG(ERROR, "SetValue bitmask (%u) is bigger than value (%hu)", static_cast<unsigned>(maskWords), count);
        return true;
    }
    for (std::size_t i = 0; i < maskWords; ++i) {
        const unsigned mask = (*bitmask)[2 * i] * 256u + (*bitmask)[2 * i + 1];
        mValues[offset + i] = static_cast<std::uint16_t>(mValues[offset + i] | (values[i] & mask));
    }
    return true;
}

bool FrameDataValue::SetValue(std::uint16_t address, std::uint16_t value) {
    return SetValue(address, &value, 1, nullptr);
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
