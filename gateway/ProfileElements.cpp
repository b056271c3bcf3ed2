#include "gateway/ProfileElements.h"

#include <algorithm>
#include <charconv>

#include "DataModel/AttributeConstant.h"
#include "DataModel/AttributeConverter.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::AttributeConstant;
using ModbusDeviceModel::DataModel::AttributeConverter;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::MAX_ELEMENT_REGISTERS;
namespace LogicCodeRows = ModbusDeviceModel::DeviceProfile::LogicCodeRows;

namespace {

using Bytes = std::vector<std::uint8_t>;

Names NamesOfLogicCodes() {
    Names names;
    for (const auto& row : LogicCodeRows::TABLE) {
        names.emplace_back(row.name);
    }
    return names;
}

// Null for an unknown or unsupported type, which is reported.
const LogicCodeRow* ReadType(const JsonCursor& type) {
    const auto number = type->is_number() ? type.Number() : std::nullopt;
    const auto row = std::find_if(LogicCodeRows::TABLE.begin(), LogicCodeRows::TABLE.end(), [&](const auto& known) {
        return number ? known.code == *number : known.name == type->get_ref<const std::string&>();
    });
    if (row == LogicCodeRows::TABLE.end()) {
        type.Error("there is no logic code " + Cited(*type) +
                   Alternatives(type.Text(), NamesOfLogicCodes(), "the numbers 0 to 62 and their names"));
        return nullptr;
    }
    if (row->family == Family::SCALED_POWER) {
        type.Error("the type " + Quoted(row->name) +
                   " is not supported in this version: its decimal exponent comes from another element");
        return nullptr;
    }
    return &*row;
}

// Nothing for a number that does not suit the type, which is reported.
std::optional<std::uint8_t> ReadCount(const JsonCursor& element, const LogicCodeRow& type) {
    const bool any = type.maxRegisters == MAX_ELEMENT_REGISTERS;
    const JsonCursor place = element.At("count");
    if (place->is_null() && !any) {
        return type.maxRegisters;
    }
    const auto count = place.Number();
    if (count && *count >= type.minRegisters && *count <= type.maxRegisters) {
        return static_cast<std::uint8_t>(*count);
    }
    const std::string least = std::to_string(type.minRegisters);
    const std::string allowed =
        type.minRegisters == type.maxRegisters ? least : least + " to " + std::to_string(type.maxRegisters);
    (count ? place : element)
        .Error((count ? "an element of " + std::to_string(*count) + " registers does not suit"
                      : std::string("\"count\" is missing, the number of registers of")) +
               " the type " + Quoted(type.name) + "; allowed: " + allowed);
    return std::nullopt;
}

// The bytes of "0x...". Nothing where there is no such text, and for a faulty one, which is reported.
std::optional<Bytes> ReadBytes(const JsonCursor& place, std::size_t count) {
    if (place->is_null()) {
        return std::nullopt;
    }
    const std::string text = place.Text();
    Bytes bytes;
    const char* end = text.data() + text.size();
    for (const char* digits = text.data() + 2; end - digits >= 2; digits += 2) {
        std::uint8_t byte = 0;
        const auto result = std::from_chars(digits, digits + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != digits + 2) {
            break;
        }
        bytes.push_back(byte);
    }
    if (bytes.size() != count || text.size() != 2 + 2 * count) {
        place.Error(Cited(*place) + " does not suit the element; allowed: \"0x\" and " + std::to_string(2 * count) +
                    " hexadecimal digits, two per byte of the element");
        return std::nullopt;
    }
    return bytes;
}

ByteOrderingEnum ReadOrder(const JsonCursor& order) {
    if (const auto number = order.Number()) {
        return static_cast<ByteOrderingEnum>(*number);
    }
    return order.Text() == "big"      ? ByteOrderingEnum::BIG_ENDIAN_WORDS
           : order.Text() == "little" ? ByteOrderingEnum::LITTLE_ENDIAN_WORDS
                                      : ByteOrderingEnum::DEVICE_ORDER;
}

bool IsScalable(const LogicCodeRow& type) {
    return type.family == Family::NUMBER || type.family == Family::DOUBLE || type.family == Family::DECIMAL_WORDS ||
           type.family == Family::POWER_FACTOR || type.family == Family::BOOLEAN;
}

template <typename Number>
Number ReadFactor(const JsonCursor& element, const char* member, Number usual, const LogicCodeRow& type) {
    const JsonCursor place = element.At(member);
    if (place->is_null()) {
        return usual;
    }
    if (!IsScalable(type)) {
        place.Warning("has no effect: values of the type " + Quoted(type.name) + " are not scaled");
    }
    return place->get<Number>();
}

Names LabelsOf(const ProfileEnumerations::Pairs& pairs) {
    Names labels;
    if (pairs) {
        for (const auto& pair : *pairs) {
            labels.push_back(pair.mLabel);
        }
    }
    return labels;
}

}  // namespace

ProfileElements::ProfileElements(const JsonCursor& section, ProfileFrames& frames, ProfileEnumerations& enumerations)
    : mFrames(frames), mEnumerations(enumerations) {
    section.ForEach([this](const std::string& name, const JsonCursor& place) {
        mNamed.emplace(name, Named{place, Read(place)});
    });
}

std::shared_ptr<const ProfileElement> ProfileElements::Get(const JsonCursor& role) {
    auto element = role->is_string() ? GetNamed(role) : Read(role);
    if (element && element->frame) {
        mFrames.MarkUsed(*element->frame);
    }
    return element;
}

std::shared_ptr<const ProfileElement> ProfileElements::GetNamed(const JsonCursor& role) {
    const auto found = mNamed.find(role.Text());
    if (found == mNamed.end()) {
        Names names;
        for (const auto& known : mNamed) {
            names.push_back(known.first);
        }
        role.Error("there is no such element under \"elements\"" + Alternatives(role.Text(), names));
        return nullptr;
    }
    found->second.used = true;
    return found->second.element;
}

std::shared_ptr<const ProfileElement> ProfileElements::Read(const JsonCursor& place) {
    auto element = std::make_shared<ProfileElement>();
    if (place->contains("constant")) {
        element->constant = &(*place)["constant"];
        element->adapter = std::make_shared<AttributeConstant>(*element->constant);
        return element;
    }
    if (!place.Has("type") || (element->type = ReadType(place.At("type"))) == nullptr) {
        return nullptr;
    }
    const LogicCodeRow& type = *element->type;
    const auto pairs = mEnumerations.Get(place, type);
    const auto scale = ReadFactor<double>(place, "scale", 1.0, type);
    const auto offset = ReadFactor<float>(place, "offset", 0.0F, type);
    const auto count = ReadCount(place, type);
    const auto address = place.At("address").Number();
    if (!pairs || !count || !address) {
        return nullptr;
    }
    const std::size_t byteCount = std::size_t{2} * *count;
    const auto mask = ReadBytes(place.At("mask"), byteCount);
    const bool hasPattern = ReadBytes(place.At("notAvailable"), byteCount).has_value();
    element->frame = mFrames.Find(place, static_cast<std::uint32_t>(*address), *count);
    if (!element->frame) {
        return nullptr;
    }
    element->labels = LabelsOf(*pairs);
    element->adapter = std::make_shared<AttributeConverter>(
        static_cast<std::uint16_t>(*address), *count,
        std::make_shared<Bytes>(mask.value_or(Bytes(byteCount, std::uint8_t{0xFF}))), scale,
        hasPattern ? std::make_shared<std::string>(place.At("notAvailable").Text()) : nullptr,
        LogicCodeIdentifier{type.code}, *element->frame, offset, *pairs, ReadOrder(place.At("order")), hasPattern);
    return element;
}

void ProfileElements::ReportUnused() const {
    for (const auto& [name, named] : mNamed) {
        if (!named.used) {
            named.place.Warning("no object uses the element " + Quoted(name));
        }
    }
}

}  // namespace kzm::ModbusGateway
