#include "DataModel/AttributeConstant.h"
#include "DataModel/AttributeProcessor.h"
#include "DataModel/DataObjectAdapter.h"
#include "DataModel/SimpleObjectAdapter.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test::ObjectAdapterTest {

using Adapter = std::shared_ptr<AttributeAdapter>;

Adapter Constant(const json& value) {
    return std::make_shared<AttributeConstant>(value);
}

// An adapter that always fails with a status.
struct Failing : AttributeConstant {
    explicit Failing(int number) : AttributeConstant(nullptr), status(static_cast<StatusCode>(number)) {}
    StatusCode GetIotValue(const std::string&, const std::shared_ptr<CacheReadAccessInterface>&, bool, bool,
                           _Quality_t&, json&) override {
        return status;
    }
    StatusCode ComputeAndGetFrameIndexes(std::set<std::uint8_t>&) override { return status; }
    StatusCode status;
};

Adapter Fail(int status) {
    return std::make_shared<Failing>(status);
}

std::shared_ptr<DataObjectAdapter> MakeObject(const std::map<AttributeAdapterType, Adapter>& adapters,
                                              const std::string& path = "") {
    auto object = std::make_shared<DataObjectAdapter>(path, "urn");
    for (const auto& [type, adapter] : adapters) {
        EXPECT_EQ(Number(object->SetAdapter(type, adapter)), 0);
    }
    return object;
}

// Fills an object that holds `before`: "status value" or "exception id".
std::string Fill(VortaObjectAdapter& adapter, const std::shared_ptr<TestCache>& cache = nullptr,
                 const char* before = "{}") try {
    VortaORBAObject object("id", "name", "alias", json::parse(before));
    const auto status = adapter.GetObject(cache, true, false, object);
    return std::to_string(Number(status)) + " " + object.GetValue().dump();
} catch (const json::exception& error) {
    return "exception " + std::to_string(error.id);
}

const std::string DATE = std::string(R"("datetime":")") + NOW_TEXT + '"';

TEST(SimpleObjectAdapter, ReadsItsValueFromTheCache) {
    const StoppedClock clock(NOW);
    SimpleObjectAdapter adapter("", MakeConverter({}));
    EXPECT_EQ(Fill(adapter, MakeCache("0007")), R"(0 {"value":7})");
    EXPECT_EQ(Number(adapter.ComputeFrameIndexes()), 0);
    EXPECT_EQ(adapter.GetFrameIndexes(), std::set<std::uint8_t>{0});
}

TEST(SimpleObjectAdapter, AFailureLeavesTheObjectAsItWas) {
    CapturedLog log;
    SimpleObjectAdapter none("", nullptr), stale("", Fail(42)), failing("a", Fail(44));
    EXPECT_EQ(Fill(none), "1 {}");
    EXPECT_EQ(Fill(stale), "42 {}");
    EXPECT_EQ(Fill(failing), "44 {}");
    EXPECT_EQ(Number(none.ComputeFrameIndexes()), 1);
    none.GetModbusMeasurementInformation();
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::SimpleObjectAdapter] GetObject: Pointer for value is empty
[DataModel::SimpleObjectAdapter] GetObject: Failed to get value from value adapter, status=not found (44)
[DataModel::SimpleObjectAdapter] ComputeFrameIndexes: Mandatory attribute pointer for value is empty, status = invalid argument (1)
[DataModel::SimpleObjectAdapter] [GetModbusMeasurementInformation] Should not be called, empty value returned)");
    EXPECT_EQ(log.Joined(OrbaLogLevel::TRACE), R"(
[DataModel::SimpleObjectAdapter][trace] GetObject: Did not read from cache)");
}

TEST(ElementPath, IsSplitAsAJsonPointerAndMakesMissingParentsObjects) {
    const std::tuple<const char*, const char*, const char*> ROWS[] = {
        {"", R"({"value": 0, "unit": "A"})", R"(0 {"unit":"A","value":1})"},
        {"", "null", R"(0 {"value":1})"},
        {"a", "{}", R"(0 {"elements":{"a":{"value":1}}})"},
        {"a", R"({"elements": {"a": {"unit": "A"}, "b": 1}})", R"(0 {"elements":{"a":{"unit":"A","value":1},"b":1}})"},
        {"a/b", R"({"elements": {"a": null}})", R"(0 {"elements":{"a":{"b":{"value":1}}}})"},
        {"0", "null", R"(0 {"elements":{"0":{"value":1}}})"},
        {"1", R"({"elements": [{}, {"x": 2}]})", R"(0 {"elements":[{},{"value":1,"x":2}]})"},
        {"0", R"({"elements": []})", R"(0 {"elements":[{"value":1}]})"},
        {"2/a", R"({"elements": [5]})", R"(0 {"elements":[5,null,{"a":{"value":1}}]})"},
        {"-", R"({"elements": [{}]})", R"(0 {"elements":[{},{"value":1}]})"},
        {"a~1b~0", "{}", R"(0 {"elements":{"a/b~":{"value":1}}})"},
        {"/", "{}", R"(0 {"elements":{"":{"":{"value":1}}}})"},
        {"xy", R"({"elements": []})", "exception 109"},
        {"01", R"({"elements": [1, 2]})", "exception 106"},
        {"99999999999999999999", R"({"elements": []})", "exception 404"},
        {"x", R"({"elements": 5})", "exception 404"},
        {"x", "5", "exception 404"},
        {"", "5", "exception 305"}};
    for (const auto& [path, before, after] : ROWS) {
        SimpleObjectAdapter adapter(path, Constant(1));
        EXPECT_EQ(Fill(adapter, nullptr, before), after) << path << " in " << before;
    }
    EXPECT_THROW(SimpleObjectAdapter("a~2", Constant(1)), json::parse_error);
}

TEST(DataObjectAdapter, WritesValueQualityAndDateTime) {
    const StoppedClock clock(NOW);
    const auto cache = MakeCache("0007");
    cache->frames[0].quality = QUALITY_QUESTIONABLE;
    const auto plain = MakeObject({{VALUE, MakeConverter({})}});
    EXPECT_EQ(Fill(*plain, cache), "0 {" + DATE + R"(,"quality":"Questionable","value":7})");
    const auto whole = MakeObject({{VALUE, MakeConverter({})},
                                   {AVAILABILITY, Constant(true)},
                                   {QUALITY, Constant("Good")},
                                   {TIMESTAMP, Constant("then")}},
                                  "a/b");
    EXPECT_EQ(Fill(*whole, cache), R"(0 {"elements":{"a":{"b":{"datetime":"then","quality":"Good","value":7}}}})");
    // A data object that is the value of another follows its own rules.
    const auto outer = MakeObject({{VALUE, whole}, {TIMESTAMP, Constant(5)}});
    EXPECT_EQ(Fill(*outer, cache), R"(0 {"datetime":5,"quality":"Good","value":7})");
}

TEST(DataObjectAdapter, TheQualityAdaptersTextIsGoodOrBad) {
    const StoppedClock clock(NOW);
    const std::pair<json, const char*> ROWS[] = {
        {"Good", "Good"}, {"Questionable", "Bad"}, {"good", "Bad"}, {1, "Uninitialised"}};
    const CapturedLog quiet(OrbaLogLevel::NONE);
    for (const auto& [text, expected] : ROWS) {
        const auto object = MakeObject({{VALUE, Constant(1)}, {QUALITY, Constant(text)}});
        EXPECT_EQ(Fill(*object), "0 {" + DATE + ",\"quality\":\"" + expected + "\",\"value\":1}") << text;
    }
}

TEST(DataObjectAdapter, WithoutAValueTheQualityIsBadAndTheReasonIsReturned) {
    const StoppedClock clock(NOW);
    const std::pair<std::map<AttributeAdapterType, Adapter>, int> ROWS[] = {
        {{{VALUE, Fail(42)}}, 42},
        {{}, 1},
        {{{VALUE, Fail(44)}}, 1},
        {{{VALUE, Fail(7)}}, 7},
        {{{VALUE, Constant(1)}, {AVAILABILITY, Constant(false)}}, 63},
        {{{VALUE, Constant(1)}, {AVAILABILITY, Constant("true")}}, 1},
        {{{VALUE, Constant(1)}, {AVAILABILITY, Fail(42)}}, 42},
        {{{VALUE, Constant(1)}, {AVAILABILITY, Fail(1)}}, 1},
        {{{VALUE, Constant(1)}, {QUALITY, Fail(42)}}, 42},
        {{{VALUE, Constant(1)}, {QUALITY, Fail(20)}}, 20}};
    CapturedLog log;
    std::string lines;
    for (const auto& [adapters, status] : ROWS) {
        log.Clear();
        EXPECT_EQ(Fill(*MakeObject(adapters), nullptr, R"({"value": "old"})"),
                  std::to_string(status) + " {" + DATE + R"(,"quality":"Bad","value":"old"})");
        for (const auto& line : log.Lines()) {
            // Without the traces of the value and the missing timestamp adapter.
            if (line.text.find("urn='urn', value=") == std::string::npos &&
                line.text.find("default value is set") == std::string::npos &&
                line.text.find("AttributeConstant") == std::string::npos) {
                lines += '\n' + std::to_string(static_cast<int>(line.level)) + line.text;
            }
        }
        lines += '\n';
    }
    EXPECT_EQ(lines, R"(
7[DataModel::DataObjectAdapter][trace] GetObject: Did not read from cache, urn=urn

3[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Pointer for value is empty

3[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Failed to get value from value adapter 'not found (44)'

3[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Failed to get value from value adapter 'status 7'
3[DataModel::DataObjectAdapter] GetObject: Failed to get object value, urn=urn, status=status 7

6[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Measurement with urn=urn is not available

3[DataModel::DataObjectAdapter] [GetAvailability] Availability value is not a boolean: '"true"'
3[DataModel::DataObjectAdapter] GetObject: Failed to get object value, urn=urn, status=invalid argument (1)

6[DataModel::DataObjectAdapter] GetAvailability: Did not got value from availability adapter
7[DataModel::DataObjectAdapter][trace] GetObject: Did not read from cache, urn=urn

3[DataModel::DataObjectAdapter] GetAvailability: Failed to get value from availability adapter 'invalid argument (1)'
3[DataModel::DataObjectAdapter] GetObject: Failed to get object value, urn=urn, status=invalid argument (1)

6[DataModel::DataObjectAdapter] GetQuality: Did not got value from quality adapter
6[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Failed to get quality
7[DataModel::DataObjectAdapter][trace] GetObject: Did not read from cache, urn=urn

3[DataModel::DataObjectAdapter] GetQuality: Failed to get value from quality adapter 'already set (20)'
6[DataModel::DataObjectAdapter] GetValueWithAvailabilityAndQuality: Failed to get quality
3[DataModel::DataObjectAdapter] GetObject: Failed to get object value, urn=urn, status=already set (20)
)");
}

TEST(DataObjectAdapter, ATimestampAdaptersStatusReplacesTheValues) {
    CapturedLog log(OrbaLogLevel::INFORMATION);
    EXPECT_EQ(Fill(*MakeObject({{VALUE, Fail(42)}, {TIMESTAMP, Constant("then")}}, "p")),
              R"(0 {"elements":{"p":{"datetime":"then","quality":"Bad"}}})");
    EXPECT_EQ(Fill(*MakeObject({{VALUE, Constant(1)}, {TIMESTAMP, Fail(42)}}), nullptr, R"({"datetime": "old"})"),
              R"(42 {"datetime":"old","quality":"Good","value":1})");
    EXPECT_EQ(log.Joined(OrbaLogLevel::INFORMATION), R"(
[DataModel::DataObjectAdapter] GetObject: Failed to get value from timestamp adapter, status=value not available (42))");
    EXPECT_EQ(Fill(*MakeObject({{VALUE, Constant(1)}, {TIMESTAMP, Constant(5)}}, "p")), "exception 302")
        << "a date-time under an element path must be a text";
}

TEST(DataObjectAdapter, ARoleTakesOneAdapterThatDoesNotReadTheObject) {
    CapturedLog log;
    const auto object = MakeObject({{VALUE, Constant(1)}});
    EXPECT_EQ(Number(object->SetAdapter(VALUE, Constant(2))), 20);
    EXPECT_EQ(Number(object->SetAdapter(TIMESTAMP, nullptr)), 28);
    const StoppedClock clock(NOW);
    EXPECT_EQ(Fill(*object), "0 {" + DATE + R"(,"quality":"Good","value":1})");
    const auto first = MakeObject({}), second = MakeObject({{VALUE, first}, {QUALITY, first}});
    const auto third =
        MakeObject({{TIMESTAMP, std::make_shared<AttributeProcessor>(
                                    AttributeProcessor::Inputs{{"a", nullptr}, {"b", second}}, nullptr)}});
    for (const auto& reader : {first, second, third}) {
        EXPECT_EQ(Number(first->SetAdapter(AVAILABILITY, reader)), 28);
    }
    EXPECT_EQ(Number(third->SetAdapter(AVAILABILITY, first)), 0);
    EXPECT_EQ(Number(first->SetAdapter(AVAILABILITY, Constant(true))), 0);
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::DataObjectAdapter] SetAdapter: an adapter is already set
[DataModel::DataObjectAdapter] SetAdapter: Null pointer parameter
[DataModel::DataObjectAdapter] SetAdapter: Refused an adapter that reads this data object itself, urn=urn
[DataModel::DataObjectAdapter] SetAdapter: Refused an adapter that reads this data object itself, urn=urn
[DataModel::DataObjectAdapter] SetAdapter: Refused an adapter that reads this data object itself, urn=urn)");
}

TEST(DataObjectAdapter, FrameIndexesAreMergedOverRolesAndReplaceTheCallersSet) {
    using Frames = std::set<std::uint8_t>;
    const auto inner = MakeObject({{VALUE, MakeConverter({.frame = 2})}});
    const auto object = MakeObject({{VALUE, MakeConverter({.frame = 1})}, {QUALITY, inner}});
    Frames frames{7};
    EXPECT_EQ(Number(object->ComputeAndGetFrameIndexes(frames)), 0);
    EXPECT_EQ(frames, (Frames{1, 2}));
    EXPECT_EQ(object->GetFrameIndexes(), (Frames{1, 2}));
    EXPECT_EQ(object->GetModbusMeasurementInformation().mRegisterAddress, 100);
    EXPECT_FALSE(object->HasEnumOutput());
    std::string className;
    EXPECT_EQ(Number(object->GetClassName(className)), 0);

    CapturedLog log;
    frames = {7};
    const auto failing = MakeObject({{VALUE, MakeConverter({.frame = 1})}, {QUALITY, Fail(1)}});
    EXPECT_EQ(Number(failing->ComputeAndGetFrameIndexes(frames)), 1);
    EXPECT_EQ(Number(MakeObject({})->ComputeFrameIndexes()), 1);
    EXPECT_EQ(frames, Frames{7});
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::DataObjectAdapter] ComputeFrameIndexes: Failed to get frame indexes from adapter, status=invalid argument (1))");
    EXPECT_EQ(Number(MakeObject({})->GetClassName(className)), 44);
    EXPECT_EQ(MakeObject({})->GetModbusMeasurementInformation().mScaleFactor, 1.0);
}

}  // namespace kzm::ModbusDeviceModel::Test::ObjectAdapterTest
