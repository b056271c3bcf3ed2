#include "DeviceProfile/EnumerationPairData.h"

#include <stdexcept>

#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

constexpr const char* LOG_MODULE = "DeviceProfile::EnumerationPairData";

const char* RequireText(const char* text) {
    if (text == nullptr) {
        throw std::logic_error("basic_string: construction from null is not valid");
    }
    return text;
}

}  // namespace

EnumerationPairData::EnumerationPairData(std::uint32_t value, const std::string& label)
    : mLabel(label), mType(EnumerationType::UNSIGNED_INTEGER), mValue(value) {}

EnumerationPairData::EnumerationPairData(float value, const std::string& label)
    : mLabel(label), mType(EnumerationType::FLOAT), mValue(value) {}

EnumerationPairData::EnumerationPairData(const char* value, const std::string& label)
    : mLabel(label), mType(EnumerationType::STRING), mStringValue(RequireText(value)), mValue(std::uint32_t{0}) {}

bool EnumerationPairData::matches(std::uint32_t value) const {
    return mType == EnumerationType::UNSIGNED_INTEGER && mValue.mUnsigned == value;
}

bool EnumerationPairData::matches(float value) const {
    return mType == EnumerationType::FLOAT && mValue.mFloat == value;
}

bool EnumerationPairData::matches(const char* value) const {
    return mType == EnumerationType::STRING && mStringValue == value;
}

EnumerationType EnumerationPairData::GetTypeFromLogicCode(LogicCodeIdentifier logicCode) {
    const EnumerationType type = RowOf(logicCode).enumerationType;
    if (type == EnumerationType::NONE) {
        KZM_LOG(WARNING, "[%s] Logic code %u is not compatible with any enumeration types", __func__,
                static_cast<unsigned>(logicCode));
    }
    return type;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
