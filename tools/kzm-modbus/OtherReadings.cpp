#include "OtherReadings.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>

#include "DataModel/ElementData.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "Text.h"
#include "gateway/diagnosis/Interpretation.h"
#include "gateway/json/NumberText.h"
#include "gateway/model/ElementPrecision.h"
#include "gateway/model/ValueEncoder.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ByteOrderingEnum;
using ModbusDeviceModel::LogicCodeIdentifier;
using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DataModel::Reason;
using ModbusDeviceModel::DataModel::StepKind;
using ModbusDeviceModel::DeviceProfile::Family;
using ModbusDeviceModel::DeviceProfile::LogicCodeRow;
using ModbusDeviceModel::DeviceProfile::RowOf;
using nlohmann::json;
using Bytes = std::vector<std::uint8_t>;
using Registers = EncodedValue::Registers;

namespace {

struct UsualRange {
    const char* unit;
    double low;
    double high;
};
// What plants have; a value beyond is shown with what else its registers would be.
constexpr UsualRange USUAL_RANGES[] = {{"Hz", 0, 1000},    {"%", -200, 200},  {"°C", -60, 250},
                                       {"V", -1500, 1500}, {"kV", -500, 500}, {"A", -10000, 10000}};
constexpr double USUAL_SCALES[] = {0.1, 0.01, 0.001};

std::string UnusualFor(const std::string& unit, const json& value) {
    const auto range = std::ranges::find(USUAL_RANGES, unit, &UsualRange::unit);
    if (range == std::end(USUAL_RANGES) || !value.is_number()) {
        return "";
    }
    const double number = value.get<double>();
    return number < range->low || number > range->high ? "unusual for " + unit : "";
}

bool IsWhole(const Bytes& mask) {
    return std::ranges::count(mask, 0xFF) == std::ssize(mask);
}

// Two bytes each.
Registers RegistersIn(std::span<const std::uint8_t> bytes) {
    Registers registers;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        registers.push_back(static_cast<std::uint16_t>(bytes[i] << 8U | bytes[i + 1]));
    }
    return registers;
}

const Explanation::Step* Find(const Explanation& element, StepKind kind) {
    const auto found = std::ranges::find(element.steps, kind, &Explanation::Step::kind);
    return found == element.steps.end() ? nullptr : &*found;
}

// What an explanation tells of an element.
struct Held {
    Held(const Explanation& element, const std::string& itsUnit)
        : place(*element.registers),
          row(RowOf(LogicCodeIdentifier{place.logicCode})),
          reason(element.why.reason),
          unit(itsUnit) {
        if (const auto* received = Find(element, StepKind::RECEIVED)) {
            registers = RegistersIn(received->bytes);
        }
        if (const auto* masked = Find(element, StepKind::MASKED)) {
            mask = masked->mask;
        }
        if (const auto* scaled = Find(element, StepKind::SCALED)) {
            scale = scaled->factor;
            offset = static_cast<float>(scaled->offset);
        }
        order = Find(element, StepKind::SWAPPED) ? ByteOrderingEnum::LITTLE_ENDIAN_WORDS
                                                 : ByteOrderingEnum::BIG_ENDIAN_WORDS;
        value = Rounded(element.value);
    }

    NumberPrecision GetPrecision() const { return PrecisionOf(LogicCodeIdentifier{place.logicCode}, scale, offset); }
    json Rounded(const json& number) const {
        return number.is_number_float() ? json(RoundedTo(number.get<double>(), GetPrecision())) : number;
    }
    // As the element is read now, without its mask, pattern and labels.
    Interpretation GetPlainReading() const {
        return {row.name.substr(0, row.name.find("-to-float")), place.count, order};
    }
    bool IsPlainNumber() const {
        return (row.family == Family::NUMBER || row.family == Family::DOUBLE) && IsWhole(mask);
    }

    const Explanation::Registers& place;
    const LogicCodeRow& row;
    const Reason reason;
    const std::string& unit;
    Registers registers = {};  // in wire order; empty if none was received
    Bytes mask = {};
    double scale = 1;
    float offset = 0;
    ByteOrderingEnum order{};
    json value = {};  // null if there is none
};

// Those of the element's number from another address on; nothing if the frame does not have them.
Registers RegistersAt(const Held& held, const RegisterCache& cache, int address) {
    std::array<std::uint8_t, 256> bytes{};
    auto quality = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
    const bool exists = address >= 0 && address <= 0xFFFF;
    const std::uint32_t length = exists ? cache.ReadFrame(held.place.frameIndex, static_cast<std::uint16_t>(address),
                                                          held.place.count, bytes.data(), bytes.size(), quality)
                                        : 0;
    return RegistersIn({bytes.data(), length});
}

// As a profile writes masks and patterns.
std::string Quoted(const std::vector<std::uint8_t>& bytes) {
    std::string digits = HexOf(bytes);
    std::erase(digits, ' ');
    return "\"0x" + digits + '"';
}

// The members of one text that the other lacks: `"order": "little"`.
std::string Difference(const std::string& members, const std::string& known) {
    const json all = json::parse('{' + members + '}', nullptr, /*allow_exceptions=*/false);
    const json old = json::parse('{' + known + '}', nullptr, /*allow_exceptions=*/false);
    if (!all.is_object()) {
        return members;
    }
    std::string text;
    for (const auto& [name, value] : all.items()) {
        if (!old.is_object() || old.value(name, json()) != value) {
            text += (text.empty() ? "\"" : ", \"") + name + "\": " + value.dump();
        }
    }
    return text;
}

// Collects readings, each value once.
class Collection {
public:
    explicit Collection(const Held& held) : mHeld(held) {}

    void Add(const json& value, const std::string& change, std::string doubt, NumberPrecision precision) {
        const json shown = value.is_number_float() ? json(RoundedTo(value.get<double>(), precision)) : value;
        doubt = doubt.empty() ? UnusualFor(mHeld.unit, shown) : doubt;
        const bool isKnown =
            std::ranges::find(mReadings, shown, &OtherReading::value) != mReadings.end() || shown == mHeld.value;
        if (!change.empty() && !isKnown) {
            mReadings.push_back({shown, change, std::move(doubt)});
        }
    }

    // No value, by that change.
    void AddNone(const std::string& change) { mReadings.push_back({json(), change, ""}); }

    // Decodes as the element does, but with other registers or another mask; null if that gives no value.
    json Decode(const Registers& registers, const Bytes& mask) const {
        const auto& place = mHeld.place;
        ElementData other(place.address, place.count, std::make_shared<Bytes>(mask), mHeld.scale, nullptr,
                          LogicCodeIdentifier{place.logicCode}, place.frameIndex, "", mHeld.offset, nullptr,
                          mHeld.order, /*validityCheckEnabled=*/false);
        const bool isComplete = registers.size() == place.count && mask.size() == std::size_t{2} * place.count;
        return isComplete ? DecodeValue(other, /*deviceBigEndian=*/true, registers) : json();
    }
    void AddDecoded(const Registers& registers, const Bytes& mask, const std::string& change) {
        const json value = Decode(registers, mask);
        // A label's number is not its value, and bits that are not set are everywhere.
        if (!value.is_null() && value != Decode(mHeld.registers, mHeld.mask) && value != 0 && value != "0") {
            const std::string doubt(mHeld.IsPlainNumber() ? mHeld.GetPlainReading().WhyImplausible(registers) : "");
            Add(value, change, doubt, mHeld.GetPrecision());
        }
    }

    std::vector<OtherReading> Take() {
        std::stable_partition(mReadings.begin(), mReadings.end(),
                              [](const OtherReading& reading) { return reading.doubt.empty(); });
        return std::move(mReadings);
    }

private:
    const Held& mHeld;
    std::vector<OtherReading> mReadings;
};

std::string DoubtOf(const Held& held) {
    if (held.registers.empty()) {
        return "";
    }
    const bool isZero = std::ranges::count(held.registers, 0) == std::ssize(held.registers);
    if (!IsWhole(held.mask)) {
        return held.value == 0 && !isZero ? "the mask hides all bits that the device has set" : "";
    }
    const std::string doubt(held.IsPlainNumber() ? held.GetPlainReading().WhyImplausible(held.registers) : "");
    return doubt.empty() ? UnusualFor(held.unit, held.value) : doubt;
}

// NaN is a usual pattern of floats. Profiles write patterns most significant register first.
void AddPattern(const Held& held, Collection& readings) {
    const bool looksLikeOne = DoubtOf(held).find("pattern") != std::string::npos && !held.value.is_null();
    if (looksLikeOne || held.reason == Reason::NOT_FINITE) {
        Registers words = held.registers;
        if (held.order == ByteOrderingEnum::LITTLE_ENDIAN_WORDS) {
            std::ranges::reverse(words);
        }
        Bytes pattern;
        for (const std::uint16_t word : words) {
            pattern.push_back(static_cast<std::uint8_t>(word >> 8U));
            pattern.push_back(static_cast<std::uint8_t>(word & 0xFFU));
        }
        readings.AddNone("\"notAvailable\": " + Quoted(pattern));
    }
}

// The sibling of the type that has room for the number.
void AddWiderType(const Held& held, Collection& readings) {
    const Interpretation now = held.GetPlainReading();
    const std::string name = std::string(now.type) + "-to-float";
    for (const LogicCodeRow& row : ModbusDeviceModel::DeviceProfile::LogicCodeRows()) {
        if (row.name == name && held.reason == Reason::OUT_OF_RANGE) {
            const Interpretation wider{row.name, now.count, now.order};
            readings.Add(wider.ValueOf(held.registers, held.scale, held.offset), "\"type\": \"" + name + '"', "",
                         wider.GetPrecision(held.scale, held.offset));
        }
    }
}

// Other orders before other types: they are the likelier mistake. What has a unit is not a text.
void AddInterpretations(const Held& held, bool bytesExchanged, Collection& readings) {
    const Interpretation now = held.GetPlainReading();
    const std::string members = now.GetProfileMembers(held.scale, held.offset);
    std::vector<Interpretation> all = Interpretation::AllOf(held.registers.size());
    std::stable_partition(all.begin(), all.end(), [&](const Interpretation& one) { return one.type == now.type; });
    for (const Interpretation& other : all) {
        const json value = other.ValueOf(held.registers, held.scale, held.offset);
        const std::string doubt(other.WhyImplausible(held.registers));
        const bool isLikely = value.is_string() ? doubt.empty() && held.unit.empty() : doubt.empty() || !bytesExchanged;
        if (!value.is_null() && isLikely && other.bytesExchanged == bytesExchanged) {
            const std::string change = Difference(other.GetProfileMembers(held.scale, held.offset), members);
            readings.Add(value, change, doubt, other.GetPrecision(held.scale, held.offset));
        }
    }
}

void AddScales(const Held& held, Collection& readings) {
    const Interpretation now = held.GetPlainReading();
    for (const double factor : USUAL_SCALES) {
        const double scale = held.scale * factor;
        const json value = now.ValueOf(held.registers, scale, held.offset);
        if (now.WhyImplausible(held.registers).empty() && UnusualFor(held.unit, value).empty()) {
            readings.Add(
                value,
                Difference(now.GetProfileMembers(scale, held.offset), now.GetProfileMembers(held.scale, held.offset)),
                "", now.GetPrecision(scale, held.offset));
        }
    }
}

void AddNeighbours(const Held& held, const RegisterCache& cache, Collection& readings) {
    for (const int step : {-1, 1}) {
        const int address = held.place.address + step;
        readings.AddDecoded(RegistersAt(held, cache, address), held.mask, "\"address\": " + std::to_string(address));
    }
}

void AddMasks(const Held& held, Collection& readings) {
    std::vector<Bytes> masks;
    if (held.registers.size() == 1) {
        masks = {{0x00, 0xFF}, {0xFF, 0x00}};
    }
    masks.emplace_back(2 * held.registers.size(), 0xFF);
    for (const Bytes& mask : masks) {
        readings.AddDecoded(held.registers, mask, IsWhole(mask) ? "no \"mask\"" : "\"mask\": " + Quoted(mask));
    }
}

}  // namespace

std::string DoubtOf(const Explanation& element, const std::string& unit) {
    return DoubtOf(Held(element, unit));
}

std::vector<OtherReading> OtherReadingsOf(const Explanation& element, const RegisterCache& cache,
                                          const std::string& unit) {
    const Held held(element, unit);
    Collection readings(held);
    if (held.IsPlainNumber()) {
        AddPattern(held, readings);
        AddWiderType(held, readings);
        AddInterpretations(held, /*bytesExchanged=*/false, readings);
        if (!UnusualFor(unit, held.value).empty()) {
            AddScales(held, readings);
        }
        AddNeighbours(held, cache, readings);
        AddInterpretations(held, /*bytesExchanged=*/true, readings);
    } else {
        AddMasks(held, readings);
    }
    return readings.Take();
}

}  // namespace kzm::ModbusTool
