#include "gateway/profile/ProfileRegisters.h"

#include <algorithm>
#include <charconv>

#include "DataModel/LogicCodeDependency.h"
#include "gateway/json/ProblemText.h"
#include "gateway/profile/TypeSpelling.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::AttributeConverter;
using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DataModel::ExtendedElementData;
using ModbusDeviceModel::DataModel::LogicCodeDependency;
using ModbusDeviceModel::DeviceProfile::EnumerationType;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::LogicCodeRows;
using ModbusDeviceModel::DeviceProfile::MAX_ELEMENT_REGISTERS;
using ModbusDeviceModel::DeviceProfile::Scaling;

namespace {

using Bytes = std::vector<std::uint8_t>;

Names NamesOfLogicCodes() {
    Names names;
    for (const auto& row : LogicCodeRows()) {
        names.emplace_back(row.name);
    }
    return names;
}

// Null for an unknown type, which is reported.
const LogicCodeRow* ReadType(const JsonCursor& type) {
    const auto number = type->is_number() ? type.Number() : std::nullopt;
    const auto rows = LogicCodeRows();
    const auto row = std::ranges::find_if(rows, [&](const auto& known) {
        return number ? known.code == *number : known.name == type->get_ref<const std::string&>();
    });
    if (row == rows.end()) {
        const auto spelling = FindTypeSpelling(type.Text());
        const std::string all = "the numbers 0 to " + std::to_string(rows.size() - 1) + " and their names";
        type.Error("there is no type " + Cited(*type) +
                   (spelling ? "; " + DidYouMean(*spelling) + " Allowed: " + all
                             : Alternatives(type.Text(), NamesOfLogicCodes(), all)));
        return nullptr;
    }
    return &*row;
}

// nullopt, and reported, for a number that the type cannot have.
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
    if (count) {
        place.Error("the type " + Quoted(type.name) + " cannot have " + std::to_string(*count) +
                    " registers; allowed: " + allowed);
    } else {
        element.Error("\"count\" is missing; the type " + Quoted(type.name) + " needs a number of registers, " +
                      allowed);
    }
    return std::nullopt;
}

// The bytes of "0x..."; nullopt if there is none, and for a faulty one, which is reported.
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
        place.Error(Cited(*place) + " does not fit the element; needed: \"0x\" and " + std::to_string(2 * count) +
                    " hexadecimal digits, two per byte of the element");
        return std::nullopt;
    }
    return bytes;
}

ByteOrderingEnum ReadOrder(const JsonCursor& order) {
    if (const auto number = order.Number()) {
        return static_cast<ByteOrderingEnum>(*number);
    }
    if (order.Text() == "big") {
        return ByteOrderingEnum::BIG_ENDIAN_WORDS;
    }
    return order.Text() == "little" ? ByteOrderingEnum::LITTLE_ENDIAN_WORDS : ByteOrderingEnum::DEVICE_ORDER;
}

// Warns of members without effect on the type.
void ReportIdleMembers(const JsonCursor& element, const LogicCodeRow& type) {
    const bool power = type.family == Family::SCALED_POWER;
    const Scaling scaling = ScalingOf(type.family);
    const std::pair<const char*, bool> members[] = {{"scale", scaling == Scaling::NONE},
                                                    {"offset", scaling != Scaling::FACTOR_AND_OFFSET},
                                                    {"mask", power},
                                                    {"order", power}};
    for (const auto& [member, idle] : members) {
        if (idle && element.Has(member)) {
            element.At(member).Warning(Quoted(member) + " has no effect on values of the type " + Quoted(type.name));
        }
    }
    if (element.Has("scale") && *element.At("scale") == 0 && scaling != Scaling::NONE) {
        element.At("scale").Warning("a \"scale\" of 0 makes every value the same");
    }
}

// Warns of a mask without bits, and of the first raw value of an enumeration that the mask rules out.
void ReportFutileMask(const JsonCursor& mask, const Bytes& bytes, const LogicCodeRow& type,
                      const ProfileEnumerations::Pairs& pairs) {
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : bytes) {
        bits = bits << 8 | byte;
    }
    if (std::ranges::count(bytes, 0) == std::ssize(bytes)) {
        mask.Warning("this mask removes every bit of the registers");
    } else if (pairs && type.labelType == EnumerationType::UNSIGNED_INTEGER) {
        if (type.family == Family::SHIFTED_ENUMERATION) {
            bits /= bits & (~bits + 1);  // shifted down until the lowest one is bit 0
        }
        const auto never =
            std::ranges::find_if(*pairs, [&](const auto& pair) { return pair.mValue.mUnsigned & ~bits; });
        if (never != pairs->end()) {
            mask.Warning("with this mask the raw value " + std::to_string(never->mValue.mUnsigned) + " of " +
                         Quoted(never->mLabel) + " never occurs");
        }
    }
}

}  // namespace

std::optional<ProfileRegisters> ProfileRegisters::Read(const JsonCursor& element, const ProfileFrames& frames,
                                                       ProfileEnumerations& enumerations) {
    ProfileRegisters registers;
    if (!element.Has("type") || (registers.type = ReadType(element.At("type"))) == nullptr) {
        return std::nullopt;
    }
    const LogicCodeRow& type = *registers.type;
    const auto pairs = enumerations.Get(element, type);
    ReportIdleMembers(element, type);
    registers.scale = element.Has("scale") ? element.At("scale")->get<double>() : 1.0;
    registers.offset = element.Has("offset") ? element.At("offset")->get<float>() : 0.0F;
    const auto count = ReadCount(element, type);
    const auto address = element.At("address").Number();
    if (!pairs || !count || !address) {
        return std::nullopt;
    }
    const std::size_t byteCount = std::size_t{2} * *count;
    const auto mask = ReadBytes(element.At("mask"), byteCount);
    if (mask) {
        ReportFutileMask(element.At("mask"), *mask, type, *pairs);
    }
    registers.mask = std::make_shared<Bytes>(mask.value_or(Bytes(byteCount, std::uint8_t{0xFF})));
    if (ReadBytes(element.At("notAvailable"), byteCount)) {
        registers.notAvailable = std::make_shared<std::string>(element.At("notAvailable").Text());
    }
    const auto frame = frames.Find(element, static_cast<std::uint32_t>(*address), *count);
    if (!frame) {
        return std::nullopt;
    }
    registers.address = static_cast<std::uint16_t>(*address);
    registers.count = *count;
    registers.frame = *frame;
    registers.order = ReadOrder(element.At("order"));
    registers.pairs = *pairs;
    return registers;
}

std::shared_ptr<AttributeConverter> ProfileRegisters::MakeConverter() const {
    return std::make_shared<AttributeConverter>(address, count, mask, scale, notAvailable,
                                                LogicCodeIdentifier{type->code}, frame, offset, pairs, order,
                                                /*validityCheckEnabled=*/notAvailable != nullptr);
}

std::shared_ptr<ElementData> ProfileRegisters::MakeElement(const std::string& attributePath) const {
    return std::make_shared<ElementData>(address, count, mask, scale, notAvailable, LogicCodeIdentifier{type->code},
                                         frame, attributePath, offset, pairs, order,
                                         /*validityCheckEnabled=*/notAvailable != nullptr);
}

std::shared_ptr<ExtendedElementData> ProfileRegisters::MakeScaledPower() const {
    std::shared_ptr<std::string> pattern;
    if (notAvailable) {
        char digits[16];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), *ParseNumber(*notAvailable), 16).ptr;
        pattern = std::make_shared<std::string>(digits, end);
        std::transform(pattern->begin(), pattern->end(), pattern->begin(),
                       [](char digit) { return digit < 'a' ? digit : static_cast<char>(digit - 'a' + 'A'); });
        pattern->insert(0, "0x");
    }
    const auto dependency = std::make_shared<std::vector<LogicCodeDependency>>();
    dependency->push_back({"exponent", "", nullptr});
    return std::make_shared<ExtendedElementData>(address, count, mask, scale, pattern, LogicCodeIdentifier{type->code},
                                                 frame, "", offset, pairs, /*slaveOffset=*/std::uint16_t{0},
                                                 /*extraParameter=*/0U, dependency, order);
}

Names ProfileRegisters::GetLabels() const {
    Names labels;
    if (pairs) {
        for (const auto& pair : *pairs) {
            labels.push_back(pair.mLabel);
        }
    }
    return labels;
}

}  // namespace kzm::ModbusGateway
