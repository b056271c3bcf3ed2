#include "DeviceProfile/EnumerationPairData.h"

#include <compare>
#include <stdexcept>

#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

namespace {

constexpr const char* LOG_MODULE = "DeviceProfile::EnumerationPairData";

constexpr LogicCodeIdentifier LABELS_WITHOUT_TYPE{9};

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
    return mType == EnumerationType::STRING && value != nullptr && mStringValue == value;
}

EnumerationType EnumerationPairData::GetTypeFromLogicCode(LogicCodeIdentifier logicCode) {
    const EnumerationType type = logicCode == LABELS_WITHOUT_TYPE ? EnumerationType::NONE : RowOf(logicCode).labelType;
    if (type == EnumerationType::NONE) {
        KZM_LOG(WARNING, "[%s] Logic code %u is not compatible with any enumeration types", __func__,
                static_cast<unsigned>(logicCode));
    }
    return type;
}

bool operator<(const EnumerationPairData& left, const EnumerationPairData& right) {
    if (left.mType != right.mType) {
        return left.mType < right.mType;
    }
    auto order = left.mStringValue <=> right.mStringValue;
    if (left.mType == EnumerationType::FLOAT) {
        order = std::strong_order(left.mValue.mFloat, right.mValue.mFloat);
    } else if (left.mType == EnumerationType::UNSIGNED_INTEGER) {
        order = left.mValue.mUnsigned <=> right.mValue.mUnsigned;
    }
    return order != 0 ? order < 0 : left.mLabel < right.mLabel;
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
