#include <random>

#include "DataModel/AttributeConstant.h"
#include "DataModel/AttributeProcessor.h"
#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/ConstantComputedAlarmOperand.h"
#include "DataModel/MeasurementComputedAlarmOperand.h"
#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"
#include "DataModel/SimpleObjectAdapter.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/diagnosis/Explanation.h"
#include "gateway/diagnosis/Recomputing.h"
#include "gateway/profile/ProfileTesting.h"
#include "src/TestCache.h"
#include "src/TestChain.h"

namespace kzm::ModbusGateway {
namespace {

using namespace ModbusDeviceModel::Test;
using ModbusDeviceModel::Device::DeviceModel;

constexpr auto NOW = ModbusDeviceModel::Test::NOW;

// "name: text" of an explanation.
std::string Said(const Explanation& explanation) {
    const json why = explanation.why.ToJson();
    return why["name"].get<std::string>() + ": " + why["text"].get<std::string>();
}

// What is said of an object with these members, whose frames "f" (registers 0 to 7, as given) and "g" (10 to 17, zero)
// were received a while ago.
struct Way {
    const char* expected;
    const char* members;
    const char* registers = "0001 0000 0000 0000 0000 0000 0000 0000";
    std::int64_t age = 0;  // in ms; -1: never received
    _Quality_t quality = QUALITY_GOOD;
    std::uint8_t exception = 0;
};

std::string SaidOf(const Way& way) {
    const std::string text = R"({"device": {"model": "m", "version": "1"}, "frames": [
        {"name": "f", "function": "holding", "address": 0, "count": 8},
        {"name": "g", "function": "holding", "address": 10, "count": 8}],
        "enumerations": {"e": {"0": "Off", "1": "On"}, "t": {"A": "On"}},
        "objects": [{"name": "O", )" +
                             std::string(way.members) + "}]}";
    const auto loaded = ProfileLoader::Load(text);
    if (!loaded.profile) {
        return Written(loaded.problems);
    }
    const auto cache = std::make_shared<RegisterCache>(loaded.profile->model->GetFrames());
    std::vector<std::uint16_t> registers;
    std::istringstream words(way.registers);
    for (std::string word; words >> word;) {
        registers.push_back(static_cast<std::uint16_t>(std::stoul(word, nullptr, 16)));
    }
    const auto time = static_cast<std::uint64_t>(static_cast<std::int64_t>(NOW) - way.age);
    if (way.age != -1) {
        cache->Update(0, registers, time);
        cache->Update(1, std::vector<std::uint16_t>(8), NOW);
        cache->SetQuality(0, way.quality, way.exception);
    }
    return Said(Explain(*loaded.profile, loaded.profile->objects.front(), {cache}));
}

#define U16(address) R"({"address": )" #address R"(, "type": "uint16"})"
#define VALUE_U16 R"("value": {"address": 0, "type": "uint16"})"
#define POWER(exponent) R"("value": {"address": 0, "type": "scaled-power-34", "count": 1, "exponent": )" exponent "}"

TEST(Reason, EveryWayThroughAProfileHasItsOwn) {
    // clang-format off
    const Way ways[] = {
        {"good: good", VALUE_U16},
        {"questionable: frame f is marked Questionable", VALUE_U16, "1 0 0 0 0 0 0 0", 0, QUALITY_QUESTIONABLE},
        {"never-received: frame f was never received", VALUE_U16, "", -1},
        {"out-of-date: frame f is out of date (12.001 s, limit 12 s)", VALUE_U16, "1 0 0 0 0 0 0 0", 12001},
        {"out-of-date: frame f is out of date (13 s, limit 12 s); the device answered with exception 4 (Slave device or server failure)", VALUE_U16,
         "1 0 0 0 0 0 0 0", 13000, QUALITY_BAD, 4},
        {"future-timestamp: frame f has a timestamp in the future", VALUE_U16, "1 0 0 0 0 0 0 0", -1000},
        {"last-value: frame f was answered with exception 2 (Illegal data address); the value is the last one received", VALUE_U16, "1 0 0 0 0 0 0 0", 5000, QUALITY_BAD, 2},
        {"last-value: frame f is marked Bad; the value is the last one received", VALUE_U16, "1 0 0 0 0 0 0 0", 0, QUALITY_BAD},
        {"not-available: not available: the device sent 0x0001", R"("value": {"address": 0, "type": "uint16", "notAvailable": "0x0001"})"},
        {"not-available: not available: the device sent 0x1", R"("value": {"address": 0, "type": "scaled-power-34", "count": 1, "notAvailable": "0x0001", "exponent": {"constant": 0}})"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "float32"})", "7FC0 0 0 0 0 0 0 0"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "float64"})", "FFF0 0 0 0 0 0 0 0"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "power-factor"})", "7F80 0 0 0 0 0 0 0"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "power-factor-quadrant"})", "7FC0 0 0 0 0 0 0 0"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "load-nature"})", "7FC0 0 0 0 0 0 0 0"},
        {"not-finite: the registers hold NaN or an infinity", R"("value": {"address": 0, "type": "enum-float32"})", "7FC0 0 0 0 0 0 0 0"},
        {"out-of-range: -1 does not fit the type (0 to 65535)", R"("value": {"address": 0, "type": "uint16", "scale": -1})"},
        {"out-of-range: 10000 does not fit the type (-9999 to 9999)", R"("value": {"address": 0, "type": "mod10k-unsigned-3"})", "2710 0 0 0 0 0 0 0"},
        {"out-of-range: 1.0001e+24 does not fit the type (-9.22337203685478e+18 to 9.22337203685478e+18)", R"("value": {"address": 0, "type": "mod10k-unsigned-3", "scale": 10000000000000000})", "0 1 1 0 0 0 0 0"},
        {"out-of-range: 5 does not fit the type (-2.0001 to 2.0001)", R"("value": {"address": 0, "type": "power-factor-quadrant"})", "40A0 0 0 0 0 0 0 0"},
        {"out-of-range: 55 does not fit the type (50 to 400)", R"("value": {"address": 0, "type": "frequency-class", "count": 1})", "37 0 0 0 0 0 0 0"},
        {"out-of-range: inf does not fit the type (-1.7976931348623157e+308 to 1.7976931348623157e+308)", R"("value": {"address": 0, "type": "boolean", "scale": 1e308})", "F 0 0 0 0 0 0 0"},
        {"out-of-range: 1e+20 does not fit the type", R"("value": {"address": 0, "type": "scaled-power-34", "count": 1, "scale": 1e20, "exponent": {"constant": 0}})"},
        {"unknown-label: 7 has no label in the enumeration", R"("value": {"address": 0, "type": "enum16", "enumeration": "e"})", "7 0 0 0 0 0 0 0"},
        {"unknown-label: \"B\" has no label in the enumeration", R"("value": {"address": 0, "type": "enum-text", "count": 1, "enumeration": "t"})", "4200 0 0 0 0 0 0 0"},
        {"switched-off: not available by its flag", VALUE_U16 R"(, "availability": {"address": 10, "type": "boolean"})"},
        {"never-received: frame g was never received", VALUE_U16 R"(, "availability": {"address": 10, "type": "boolean"})", "", -1},
        {"unknown-label: 7 has no label in the enumeration", VALUE_U16 R"(, "availability": {"address": 0, "type": "enum16", "enumeration": "e"})", "7 0 0 0 0 0 0 0"},
        {"misconfigured: mask, pattern, adapter or input is missing or does not fit", VALUE_U16 R"(, "availability": {"address": 0, "type": "enum16", "enumeration": "e"}, "labels": {"On": "yes"})"},
        {"device-says-bad: the device says \"On\"", VALUE_U16 R"(, "quality": {"address": 0, "type": "enum16", "enumeration": "e"})"},
        {"misconfigured: mask, pattern, adapter or input is missing or does not fit", VALUE_U16 R"(, "quality": {"address": 0, "type": "enum16", "enumeration": "e"}, "labels": {"On": 5})"},
        {"not-available: not available: the device sent 0x0001", R"("value": {"address": 0, "type": "uint16", "notAvailable": "0x0001"}, "quality": {"address": 0, "type": "enum16", "enumeration": "e"})"},
        {"good: good", VALUE_U16 R"(, "timestamp": {"address": 10, "type": "datetime-msp", "notAvailable": "0x000000000000"})"},
        {"good: good", VALUE_U16 R"(, "quality": {"constant": "Good"})", "1 0 0 0 0 0 0 0", 0, QUALITY_BAD},
        {"input-missing: input exponent: not available: the device sent 0x0001", POWER(R"({"address": 0, "type": "uint16", "notAvailable": "0x0001"})")},
        {"cannot-compute: no result: input exponent cannot be used", POWER(R"({"address": 0, "type": "float32"})"), "3F00 0 0 0 0 0 0 0"},
        {"cannot-compute: no result: division by zero", R"("value": {"chain": "quotient", "inputs": {"dividend": )" U16(0) R"(, "divisor": )" U16(10) "}}"},
        {"cannot-compute: no result: too large, or an input of the wrong kind", R"("value": {"chain": "scale10", "inputs": {"value": )" U16(10) R"(, "exponent": )" U16(0) "}}", "17 0 0 0 0 0 0 0"},
        {"input-missing: input b: frame f is out of date (20 s, limit 12 s)", R"("value": {"chain": "sum", "inputs": {"a": )" U16(10) R"(, "b": )" U16(0) "}}", "1 0 0 0 0 0 0 0", 20000},
        {"last-value: frame f is marked Bad; the value is the last one received", R"("value": {"chain": "sum", "inputs": {"a": )" U16(10) R"(, "b": )" U16(0) "}}", "1 0 0 0 0 0 0 0", 0, QUALITY_BAD},
        {"good: good", R"("value": {"chain": "sum", "inputs": {"a": )" U16(10) R"(, "b": )" U16(0) "}}", "1 0 0 0 0 0 0 0", 0, QUALITY_QUESTIONABLE},
        {"misconfigured: mask, pattern, adapter or input is missing or does not fit", R"("value": {"constant": null})"},
        {"out-of-range: -1 does not fit the type (0 to 65535)", R"("value": )" U16(10) R"(, "elements": {"p": {"value": {"address": 0, "type": "uint16", "scale": -1}}})"},
    };
    // clang-format on
    const StoppedClock clock(NOW);
    for (const Way& way : ways) {
        EXPECT_EQ(SaidOf(way), way.expected) << way.members << " " << way.registers;
    }
}

// What is said of an adapter of a program's own model.
std::string SaidOf(const std::shared_ptr<ModbusDeviceModel::DataModel::VortaObjectAdapter>& adapter,
                   const std::shared_ptr<CacheReadAccessInterface>& cache) {
    DeviceModel::ObjectAdapters adapters{{{"O", ""}, adapter}};
    const DeviceModel model(std::move(adapters), {}, {}, {}, {}, /*bigEndian=*/true);
    return Said(Explain(model, "O", "", {cache}));
}

std::shared_ptr<DataObjectAdapter> ObjectWith(const std::shared_ptr<AttributeAdapter>& value) {
    const auto object = std::make_shared<DataObjectAdapter>("", "urn");
    object->SetAdapter(VALUE, value);
    return object;
}

// Fails in its own way and tells nobody.
class StrangeAdapter final : public AttributeAdapter {
    StatusCode GetIotValue(const std::string&, const std::shared_ptr<CacheReadAccessInterface>&, bool, bool,
                           _Quality_t&, json&) override {
        return StatusCode{99};
    }
    StatusCode GetEdmValue(const std::shared_ptr<CacheReadAccessInterface>&, bool, bool, _Quality_t&, json&) override {
        return StatusCode{99};
    }
    StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>&) override { return StatusCode{}; }
    StatusCode GetClassName(std::string&) const override { return StatusCode{}; }
    ModbusDeviceModel::Device::ModbusMeasurementInformation GetModbusMeasurementInformation() const override {
        return {};
    }
    bool HasEnumOutput() const override { return false; }
};

struct ThrowingCache final : TestCache {
    std::uint32_t ReadFrame(const std::uint8_t&, const std::uint16_t&, std::uint8_t, std::uint8_t*, std::uint32_t,
                            _Quality_t&) const override {
        throw std::bad_alloc();
    }
};

TEST(Reason, EveryWayThroughAModelOfOnesOwnHasItsOwn) {
    using namespace ModbusDeviceModel::DataModel;
    using Signatures = std::vector<ModbusDeviceModel::ProcessingChain::Signature>;
    const std::string MISCONFIGURED = "misconfigured: mask, pattern, adapter or input is missing or does not fit";
    const std::string CANNOT = "cannot-compute: the computation has no result";
    const auto pairs = std::make_shared<Pairs>(Pairs{{std::uint32_t{1}, "untranslated"}, {std::uint32_t{2}, ""}});
    const auto empty = std::make_shared<Pairs>();
    const auto one = std::make_shared<AttributeConstant>(1);
    const auto cache = MakeCache("0001");
    const auto processed = [&](AttributeProcessor::Inputs inputs,
                               std::shared_ptr<ModbusDeviceModel::ProcessingChain> chain) {
        return ObjectWith(std::make_shared<AttributeProcessor>(inputs, std::move(chain)));
    };
    const Signatures signatures{{{"a", ModbusDeviceModel::NUMBER}}};
    auto halfReceived = MakeCache("00");
    auto nothing = MakeCache("");
    auto noQuality = MakeCache("0001");
    noQuality->frames[0].quality = QUALITY_UNINITIALISED;
    const struct {
        std::string expected;
        std::shared_ptr<VortaObjectAdapter> adapter;
        std::shared_ptr<CacheReadAccessInterface> cache;
    } rows[] = {
        {MISCONFIGURED, nullptr, cache},
        {MISCONFIGURED, std::make_shared<SimpleObjectAdapter>("", nullptr), cache},
        {MISCONFIGURED, std::make_shared<DataObjectAdapter>("", ""), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({}), nullptr},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.frame = 255}), cache},
        {MISCONFIGURED + ": stoi", ModbusDeviceModel::Test::ObjectOf({.pattern = "0xzzzz"}), cache},
        {MISCONFIGURED + ": 0x00", ModbusDeviceModel::Test::ObjectOf({.pattern = "0x00"}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.mask = "FF"}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.code = 200}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.code = 34}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.code = 61}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.code = 61, .pairs = empty}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({.code = 2, .pairs = pairs}), cache},
        {MISCONFIGURED, ModbusDeviceModel::Test::ObjectOf({}), MakeCache(std::string(1024, '0'))},
        {"no-data: frame 0 does not have the registers", ModbusDeviceModel::Test::ObjectOf({}), nothing},
        {"no-data: frame 0 does not have the registers", ModbusDeviceModel::Test::ObjectOf({}), noQuality},
        {"no-data: frame 0 does not have the registers", ModbusDeviceModel::Test::ObjectOf({.pattern = "0x0001"}),
         halfReceived},
        {"no-memory: memory ran short: std::bad_alloc", ModbusDeviceModel::Test::ObjectOf({}),
         std::make_shared<ThrowingCache>()},
        {"no-translation: the label \"untranslated\" has no translation",
         ModbusDeviceModel::Test::ObjectOf({.code = 9, .pairs = pairs}), cache},
        {"unknown-label: 2 has no label in the enumeration",
         ModbusDeviceModel::Test::ObjectOf({.code = 9, .pairs = pairs}), MakeCache("0002")},
        {MISCONFIGURED + ": chain", processed({}, MakeChain(signatures)), cache},
        {MISCONFIGURED + ": a", processed({{"a", nullptr}}, MakeChain(signatures)), cache},
        {MISCONFIGURED, processed({{"a", one}}, nullptr), cache},
        {CANNOT, processed({{"b", one}}, MakeChain(signatures)), cache},
        {CANNOT, processed({{"a", one}}, MakeChain(signatures, 42)), cache},
        {CANNOT, processed({{"a", one}}, MakeChain(signatures, 0, 5, true)), cache},
        {"no-translation: the label \"x\" has no translation",
         processed({{"a", one}}, MakeChain(signatures, 0, "x", true)), cache},
        {"internal: status " + kz::orba::ConvertStatusCodeToString(StatusCode{99}),
         ObjectWith(std::make_shared<StrangeAdapter>()), cache},
    };
    const StoppedClock clock(NOW);
    for (const auto& row : rows) {
        EXPECT_EQ(SaidOf(row.adapter, row.cache), row.expected) << &row - rows;
    }
}

TEST(Reason, EveryWayOfAnAlarmHasItsOwnAndThePreviousValuesStay) {
    using namespace ModbusDeviceModel::DataModel;
    const auto measured = [](const Traits& traits) {
        return std::make_shared<MeasurementComputedAlarmOperand>("left", ModbusDeviceModel::Test::ObjectOf(traits));
    };
    const auto previous = std::make_shared<PreviousMeasurementComputedAlarmOperand>("right", "p");
    const auto constant = std::make_shared<ConstantComputedAlarmOperand>("right", 1);
    const auto compares = MakeChain({{{"left", ModbusDeviceModel::NUMBER}}}, 0, true);
    const auto bad = MakeCache("0001");
    bad->frames[0].quality = QUALITY_BAD;
    const struct {
        std::string expected;
        std::shared_ptr<ComputedAlarmOperand> left, right;
        std::shared_ptr<ModbusDeviceModel::ProcessingChain> chain;
        std::shared_ptr<TestCache> cache;
        std::optional<ComputedAlarmPreviousMeasurement> record;
    } rows[] = {
        {"good: good", measured({}), constant, compares, MakeCache("0001"), {}},
        {"misconfigured: mask", measured({}), nullptr, compares, MakeCache("0001"), {}},
        {"misconfigured: mask", measured({}), constant, nullptr, MakeCache("0001"), {}},
        {"input-missing: input left: frame 0 is marked Bad", measured({}), constant, compares, bad, {}},
        {"input-missing: input left: not available: the device sent",
         measured({.pattern = "0x0001"}),
         constant,
         compares,
         MakeCache("0001"),
         {}},
        {"input-missing: input left: mask",
         std::make_shared<MeasurementComputedAlarmOperand>("left", MeasurementComputedAlarmOperand::Source()),
         constant,
         compares,
         MakeCache("0001"),
         {}},
        {"cannot-compute: ",
         measured({}),
         constant,
         MakeChain({{{"left", ModbusDeviceModel::NUMBER}}}, 0, 5),
         MakeCache("0001"),
         {}},
        {"input-missing: input right: there is no previous value \"p\" yet",
         measured({}),
         previous,
         compares,
         MakeCache("0001"),
         {}},
        {"input-missing: input right: the previous value \"p\" is out of date (",
         measured({}),
         previous,
         compares,
         MakeCache("0001"),
         {{1, QUALITY_GOOD, NOW - 3600'000}}},
        {"questionable: the previous value \"p\" is marked Questionable",
         measured({}),
         previous,
         compares,
         MakeCache("0001"),
         {{1, QUALITY_QUESTIONABLE, NOW}}},
    };
    const StoppedClock clock(NOW);
    for (const auto& row : rows) {
        DeviceModel::ComputedAlarms alarms{
            {{"A", ""},
             std::make_shared<ComputedAlarmElement>("A", true, "LOW", "", "", row.chain, row.left, row.right)}};
        const DeviceModel model({}, {}, {}, {}, std::move(alarms), /*bigEndian=*/true);
        const auto records = std::make_shared<std::map<std::string, ComputedAlarmPreviousMeasurement>>();
        if (row.record) {
            records->emplace("Ap", *row.record);
        }
        const json object{{"elements", {{"state", {{"value", nullptr}, {"quality", nullptr}}}}}};
        const Explanation explanation = ExplainAlarm(model, "A", "", {row.cache}, records, object);
        EXPECT_TRUE(Said(explanation).starts_with(row.expected)) << Said(explanation);
        EXPECT_EQ(records->size(), row.record ? 1U : 0U);
        EXPECT_EQ(explanation.value, explanation.object["elements"]["state"]["value"]);
    }
}

// Every logic code with registers, scales, masks, patterns and labels by chance: what Build gives is the explanation's
// value, and there is a reason where it is none.
TEST(Reason, GeneratedElementsHaveTheirValueAndAReasonWhereThereIsNone) {
    std::mt19937 random(20260);
    const auto pick = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    const auto labels = std::make_shared<Pairs>(Pairs{{std::uint32_t{1}, "a"}, {1.5F, "b"}, {"A", "c"}});
    json all = json::array();
    const double scales[] = {1, 0.1, -2, 1e300, 1e17, 0};
    const StoppedClock clock(NOW);
    for (int i = 0; i < 500; ++i) {
        const auto& row = ModbusDeviceModel::DeviceProfile::LogicCodeRows()[static_cast<std::size_t>(i) % 63];
        Traits traits{.code = row.code, .scale = scales[pick(6)], .registers = row.maxRegisters};
        traits.registers = std::min<std::uint8_t>(row.maxRegisters, 8);
        traits.offset = pick(2) != 0 ? 0.0F : 2.5F;
        traits.order = static_cast<ModbusDeviceModel::ByteOrderingEnum>(pick(4));
        traits.pairs =
            pick(2) != 0 && row.labelType != ModbusDeviceModel::DeviceProfile::EnumerationType::NONE ? labels : nullptr;
        std::string bytes;
        for (int byte = 0; byte < 2 * traits.registers; ++byte) {
            bytes += pick(3) == 0 ? "FF" : (pick(2) != 0 ? "00" : "41");
        }
        traits.pattern = pick(8) == 0 ? "0x0000" : nullptr;
        const auto cache = MakeCache(bytes);
        auto quality = QUALITY_UNINITIALISED;
        json value;
        const auto adapter = MakeConverter({traits});
        const auto status = adapter->GetEdmValue(cache, true, false, quality, value);
        DeviceModel::ObjectAdapters adapters{{{"O", ""}, std::make_shared<SimpleObjectAdapter>("", adapter)}};
        const DeviceModel model(std::move(adapters), {}, {}, {}, {}, /*bigEndian=*/true);
        const Explanation explanation = Explain(model, "O", "", {cache});
        const std::string said = Said(explanation);
        all.push_back(explanation.ToJson());
        EXPECT_FALSE(said.starts_with("internal")) << bytes << explanation.ToJson().dump(1);
        if (traits.pairs == nullptr) {
            EXPECT_EQ(explanation.value, Number(status) == 0 ? value : json()) << bytes;
            EXPECT_EQ(said == "good: good", Number(status) == 0 && !value.is_null()) << said;
        }
    }
    ExpectRecomputed(all);
}

}  // namespace
}  // namespace kzm::ModbusGateway
