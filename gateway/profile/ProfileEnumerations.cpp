#include "gateway/profile/ProfileEnumerations.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <set>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceProfile::EnumerationPairData;
using ModbusDeviceModel::DeviceProfile::EnumerationType;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::RawView;

namespace {

std::uint32_t LargestRawValue(const LogicCodeRow& type) {
    if (type.view == RawView::U8) {
        return std::numeric_limits<std::uint8_t>::max();
    }
    return type.view == RawView::U16 ? std::numeric_limits<std::uint16_t>::max()
                                     : std::numeric_limits<std::uint32_t>::max();
}

std::optional<float> ParseFloat(const std::string& text) {
    float number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<EnumerationPairData> ParsePair(const std::string& raw, const std::string& label,
                                             const LogicCodeRow& type) {
    if (type.labelType == EnumerationType::STRING) {
        return EnumerationPairData(raw.c_str(), label);
    }
    if (type.labelType == EnumerationType::FLOAT) {
        const auto number = ParseFloat(raw);
        return number ? std::optional<EnumerationPairData>(std::in_place, *number, label) : std::nullopt;
    }
    const auto number = ParseNumber(raw);
    return number && *number <= LargestRawValue(type)
               ? std::optional<EnumerationPairData>(std::in_place, static_cast<std::uint32_t>(*number), label)
               : std::nullopt;
}

std::string AllowedRawValues(const LogicCodeRow& type) {
    return type.labelType == EnumerationType::FLOAT
               ? "a number"
               : "0 to " + std::to_string(LargestRawValue(type)) + ", in decimal digits or as \"0x...\"";
}

// False for a number seen before; texts are distinct keys anyway.
bool IsNew(const EnumerationPairData& pair, std::set<double>& seen) {
    const double number =
        pair.mType == EnumerationType::FLOAT ? pair.mValue.mFloat : static_cast<double>(pair.mValue.mUnsigned);
    return pair.mType == EnumerationType::STRING || seen.insert(number).second;
}

// nullopt for a faulty enumeration.
std::optional<ProfileEnumerations::Pairs> ReadPairs(const JsonCursor& enumeration, const LogicCodeRow& type) {
    auto pairs = std::make_shared<std::vector<EnumerationPairData>>();
    std::set<double> seen;
    enumeration.ForEach([&](const std::string& raw, const JsonCursor& label) {
        const auto pair = ParsePair(raw, label.Text(), type);
        if (!pair) {
            label.Error(Quoted(raw) + " is not a raw value of the type " + Quoted(type.name) +
                        "; allowed: " + AllowedRawValues(type));
        } else if (!IsNew(*pair, seen)) {
            label.Error("the raw value " + Quoted(raw) + " is already in the enumeration, written differently");
        } else if (!label->is_null()) {
            pairs->push_back(*pair);
        }
    });
    return pairs->empty() || pairs->size() < enumeration->size() ? std::nullopt : std::optional(pairs);
}

}  // namespace

ProfileEnumerations::ProfileEnumerations(const JsonCursor& section) {
    section.ForEach(
        [this](const std::string& name, const JsonCursor& place) { mEnumerations.emplace(name, Enumeration{place}); });
}

std::optional<ProfileEnumerations::Pairs> ProfileEnumerations::Get(const JsonCursor& element,
                                                                   const LogicCodeRow& type) {
    if (!element.Has("enumeration")) {
        if (type.labelType == EnumerationType::STRING) {
            element.Error("the type " + Quoted(type.name) + " needs an \"enumeration\"");
        }
        return Pairs();
    }
    const JsonCursor use = element.At("enumeration");
    const auto found = mEnumerations.find(use.Text());
    if (found == mEnumerations.end()) {
        Names names;
        for (const auto& known : mEnumerations) {
            names.push_back(known.first);
        }
        use.Error("there is no enumeration " + Quoted(use.Text()) + Alternatives(use.Text(), names));
        return std::nullopt;
    }
    found->second.used = true;
    if (type.labelType == EnumerationType::NONE) {
        use.Error("values of the type " + Quoted(type.name) + " have no labels");
        return std::nullopt;
    }
    return ReadPairs(found->second.place, type);
}

void ProfileEnumerations::ReportUnused() const {
    for (const auto& [name, enumeration] : mEnumerations) {
        if (!enumeration.used) {
            enumeration.place.Warning("no element uses the enumeration " + Quoted(name));
        }
    }
}

}  // namespace kzm::ModbusGateway
