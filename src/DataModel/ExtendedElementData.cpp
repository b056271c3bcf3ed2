#include "DataModel/ExtendedElementData.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "DataModel/IValueProcesser.h"
#include "DataModel/LogicCodeDependency.h"
#include "DataModel/RawRecord.h"
#include "DeviceProfile/LogicCodeTable.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::Family;
using DeviceProfile::RowOf;
using nlohmann::json;

namespace {

constexpr LogicCodeIdentifier CODE_WITH_DEPENDENCY{8};

// A number, or a text that is a number; NaN for anything else.
double NumberIn(const json& value) {
    if (value.is_number()) {
        return value.get<double>();
    }
    double number = NAN;
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size()) {
            return NAN;
        }
    }
    return number;
}

// A number as patterns write it, of which only as many digits count as the registers hold.
std::string PatternOf(std::uint64_t raw, std::uint8_t registers) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(raw));
    return std::string(text, 0, 2 + 4 * std::size_t{registers});
}

}  // namespace

ExtendedElementData::ExtendedElementData(
    std::uint16_t registerAddress, std::uint8_t numberOfRegisters, std::shared_ptr<std::vector<std::uint8_t>> bitmask,
    double scaleFactor, std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode,
    std::uint8_t frameIndex, std::string attributePath, float offset,
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs, std::uint16_t slaveOffset,
    std::uint32_t extraParameter, std::shared_ptr<std::vector<LogicCodeDependency>> dependency,
    ByteOrderingEnum byteOrdering)
    : ElementData(registerAddress, numberOfRegisters, std::move(bitmask), scaleFactor, std::move(validityStatus),
                  logicCode, frameIndex, std::move(attributePath), offset, std::move(enumerationPairs), byteOrdering,
                  /*validityCheckEnabled=*/false),
      mSlaveOffset(static_cast<std::int16_t>(slaveOffset)),
      mExtraParameter(extraParameter),
      mDependency(std::move(dependency)) {}

ExtendedElementData::~ExtendedElementData() = default;

bool ExtendedElementData::Build(unsigned char* buffer, unsigned int length, bool, int request, bool& invalid,
                                json& value, ServiceImpl::IValueProcesser* valueProcesser) {
    if (buffer == nullptr || length == 0) {
        return false;
    }
    std::uint64_t raw = 0;
    for (unsigned int i = 0; i < length; ++i) {
        raw = raw << 8 | buffer[i];
    }
    if (!HasMaskFor(length)) {
        invalid = true;
        return false;
    }
    MaskBytes(buffer, length);
    if (const auto pattern = GetValidityStatus(); pattern && *pattern == PatternOf(raw, GetNumberOfRegisters())) {
        invalid = true;
        value = nullptr;
        return true;
    }
    myData data;
    data.SetUnsigned(raw);
    invalid = false;
    return ApplyLogicConversion(request, data, invalid, value, valueProcesser);
}

bool ExtendedElementData::ApplyLogicConversion(int request, myData& data, bool& invalid, json& value,
                                               ServiceImpl::IValueProcesser* valueProcesser) {
    const bool isScaledPower = RowOf(GetLogicCode()).family == Family::SCALED_POWER;
    double exponent = 0;
    if (isScaledPower || GetLogicCode() == CODE_WITH_DEPENDENCY) {
        exponent = AskForExponent(valueProcesser);
    }
    if (!isScaledPower) {
        return ElementData::ApplyLogicConversion(request, data, invalid, value, valueProcesser);
    }
    value = nullptr;
    if (ScaleRaw(data)) {
        double unused = 0;
        OperateScaledPower(data, value, exponent, unused);
    }
    invalid = !value.is_number() || !std::isfinite(value.get<double>());
    if (invalid) {
        value = nullptr;
    }
    return true;
}

double ExtendedElementData::AskForExponent(ServiceImpl::IValueProcesser* valueProcesser) const {
    double exponent = 0;
    if (valueProcesser == nullptr || !mDependency) {
        return exponent;
    }
    for (const LogicCodeDependency& dependency : *mDependency) {
        json answer = dependency.value;
        if (valueProcesser->GetValue(dependency.name, answer)) {
            const double number = NumberIn(answer);
            exponent = std::isnan(number) ? exponent : number;
        }
    }
    return exponent;
}

// Whole factors in integer arithmetic, others in double, truncated. False for what does not fit 64 bits.
bool ExtendedElementData::ScaleRaw(myData& data) const {
    const double factor = GetScaleFactor();
    if (std::trunc(factor) == factor && factor >= 0 && factor < 0x1p64) {
        std::uint64_t scaled = 0;
        if (__builtin_mul_overflow(data.Unsigned64(), static_cast<std::uint64_t>(factor), &scaled)) {
            return false;
        }
        data.SetUnsigned(scaled);
        return true;
    }
    const double scaled = static_cast<double>(data.Unsigned64()) * factor;
    if (!(scaled > -1 && scaled < 0x1p64)) {
        return false;
    }
    data.SetUnsigned(static_cast<std::uint64_t>(scaled));
    return true;
}

void ExtendedElementData::OperateScaledPower(myData& data, json& value, double& exponent, double&) {
    const auto raw = static_cast<double>(data.Unsigned64());
    value = exponent < 0 ? raw / std::pow(10, -exponent) : exponent > 0 ? raw * std::pow(10, exponent) : raw;
}

std::int16_t ExtendedElementData::GetSlaveOffset() const {
    return mSlaveOffset;
}

std::shared_ptr<std::vector<LogicCodeDependency>> ExtendedElementData::GetLogicCodeDependency() const {
    return mDependency;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
