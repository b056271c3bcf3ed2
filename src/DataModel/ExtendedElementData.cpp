#include "DataModel/ExtendedElementData.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "DataModel/DecodingSteps.h"
#include "DataModel/IValueProcesser.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Log.h"

namespace kzm::ModbusDeviceModel::DataModel {

using DeviceProfile::Family;
using nlohmann::json;

namespace {

constexpr const char* LOG_MODULE = "DataModel::ExtendedElementData";

// Asks its dependencies, too, but does not use the answer.
constexpr LogicCodeIdentifier CODE_WITH_DEPENDENCY{8};

// A decimal number, with blanks around it or not; NaN for any other text.
double NumberIn(std::string_view text) {
    constexpr const char* BLANKS = " \t";
    const std::size_t begin = std::min(text.find_first_not_of(BLANKS), text.size());
    text = text.substr(begin, text.find_last_not_of(BLANKS) + 1 - begin);
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = NAN;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? number : NAN;
}

// The number that an answer is or has as text, else NaN.
double NumberIn(const json& answer) {
    if (answer.is_number()) {
        return answer.get<double>();
    }
    return answer.is_string() ? NumberIn(std::string_view(answer.get_ref<const std::string&>())) : NAN;
}

void WarnOf(const json& answer) {
    KZM_LOG(WARNING, "[%s] Exponent %s is not a finite number and is ignored", "Build", Logging::Text(answer).c_str());
}

// The last exponent that the dependencies give, else 0.
double AskForExponent(const std::vector<LogicCodeDependency>* dependencies, ServiceImpl::IValueProcesser* processer) {
    double exponent = 0;
    if (processer == nullptr || dependencies == nullptr) {
        return exponent;
    }
    for (const LogicCodeDependency& dependency : *dependencies) {
        json answer = dependency.value;
        if (!processer->GetValue(dependency.name, answer)) {
            continue;
        }
        const double number = NumberIn(answer);
        if (std::isfinite(number)) {
            exponent = number;
        } else if (answer.is_number() || answer.is_string()) {
            WarnOf(answer);
        }
    }
    return exponent;
}

// Whole factors in integer arithmetic, others in double, truncated. False for what does not fit 64 bits.
bool ScaleRaw(myData& data, double factor) {
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

// A number as patterns write it, of which only as many digits count as the registers hold.
std::string PatternOf(std::uint64_t raw, std::uint8_t registers) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(raw));
    return std::string(text, 0, 2 + 4 * std::size_t{registers});
}

bool MatchesPattern(const std::string* pattern, std::uint64_t raw, std::uint8_t registers) {
    if (pattern == nullptr) {
        return false;
    }
    const bool matches = *pattern == PatternOf(raw, registers);
    KZM_TELL(tObserver, {.kind = StepKind::PATTERN,
                         .reason = matches ? Reason::NOT_AVAILABLE : Reason::GOOD,
                         .applied = matches,
                         .text = *pattern});
    return matches;
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
    StepObserver* const observer = tObserver;
    if (buffer == nullptr || length == 0) {
        KZM_TELL(observer, {.kind = StepKind::FAILURE, .reason = Reason::NO_DATA});
        return false;
    }
    std::uint64_t raw = 0;
    for (unsigned int i = 0; i < length; ++i) {
        raw = raw << 8 | buffer[i];
    }
    if (!HasMaskFor(mBitmask.get(), length)) {
        KZM_TELL(observer, {.kind = StepKind::MASKED, .reason = Reason::MISCONFIGURED});
        invalid = true;
        return false;
    }
    ApplyMask(mBitmask->data(), buffer, length);
    invalid = MatchesPattern(mValidityStatus.get(), raw, mNumberOfRegisters);
    if (invalid) {
        value = nullptr;
        return true;
    }
    myData data;
    data.SetUnsigned(raw);
    KZM_TELL(observer, {.kind = StepKind::GATHERED, .bytes = {data.mBytes.data(), sizeof raw}});
    return ApplyLogicConversion(request, data, invalid, value, valueProcesser);
}

bool ExtendedElementData::ApplyLogicConversion(int request, myData& data, bool& invalid, json& value,
                                               ServiceImpl::IValueProcesser* valueProcesser) {
    const bool isScaledPower = mRow->family == Family::SCALED_POWER;
    double exponent = 0;
    if (isScaledPower || mLogicCode == CODE_WITH_DEPENDENCY) {
        exponent = AskForExponent(mDependency.get(), valueProcesser);
    }
    if (!isScaledPower) {
        return ElementData::ApplyLogicConversion(request, data, invalid, value, valueProcesser);
    }
    value = nullptr;
    const Step raw{.kind = StepKind::RAW, .number = static_cast<double>(data.Unsigned64())};
    KZM_TELL(tObserver, raw);
    if (ScaleRaw(data, mScaleFactor)) {
        OperateScaledPower(data, value, exponent, /*unused=*/0);
    }
    invalid = !value.is_number() || !std::isfinite(value.get<double>());
    const double number = value.is_number() ? value.get<double>() : raw.number * mScaleFactor;
    KZM_TELL(tObserver, {.kind = StepKind::EXPONENT, .number = exponent});
    KZM_TELL(tObserver, {.kind = StepKind::SCALED,
                         .reason = invalid ? Reason::OUT_OF_RANGE : Reason::GOOD,
                         .number = number,
                         .factor = mScaleFactor});
    if (invalid) {
        value = nullptr;
    }
    return true;
}

void ExtendedElementData::OperateScaledPower(myData& data, json& value, double exponent, double) {
    auto number = static_cast<double>(data.Unsigned64());
    if (exponent < 0) {
        number /= std::pow(10, -exponent);
    } else if (exponent > 0) {
        number *= std::pow(10, exponent);
    }
    value = number;
}

std::int16_t ExtendedElementData::GetSlaveOffset() const {
    return mSlaveOffset;
}

std::shared_ptr<std::vector<LogicCodeDependency>> ExtendedElementData::GetLogicCodeDependency() const {
    return mDependency;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
