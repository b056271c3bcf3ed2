#include "DataModel/AttributeConstant.h"
#include "DataModel/ComputedAlarmElement.h"
#include "DataModel/ConstantComputedAlarmOperand.h"
#include "DataModel/MeasurementComputedAlarmOperand.h"
#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"
#include "DataModel/PreviousValuePeriod.h"
#include "src/TestCache.h"
#include "src/TestChain.h"

namespace kzm::ModbusDeviceModel::Test::ComputedAlarmTest {

using Operand = std::shared_ptr<ComputedAlarmOperand>;

// One and a half periods of the stand-in's alarm engine.
constexpr std::uint64_t LIMIT = 90'000;

// True when "left" and "right" differ.
struct Differ : ProcessingChain {
    Differ() : ProcessingChain({{}}, "differ", false) {}

private:
    StatusCode Process(const json& parameters, json& result) const override {
        result = parameters["left"] != parameters["right"];
        return StatusCode{};
    }
};

Operand Constant(const json& value, const char* name = "left") {
    return std::make_shared<ConstantComputedAlarmOperand>(name, value);
}

Operand Previous(const char* key, const char* name = "right") {
    return std::make_shared<PreviousMeasurementComputedAlarmOperand>(name, key);
}

Operand Measurement(const Traits& traits = {}, const char* name = "left") {
    return std::make_shared<MeasurementComputedAlarmOperand>(name, std::make_shared<ElementData>(MakeElement(traits)));
}

PreviousMeasurements MakePrevious() {
    return std::make_shared<PreviousMeasurements::element_type>();
}

ComputedAlarmElement MakeAlarm(Operand left, Operand right, std::shared_ptr<ProcessingChain> chain) {
    return ComputedAlarmElement("alarm", true, "HIGH", "description", "type", std::move(chain), std::move(left),
                                std::move(right));
}

std::string Evaluate(ComputedAlarmElement alarm, const std::shared_ptr<TestCache>& cache,
                     const PreviousMeasurements& previous) {
    return OutcomeOf([&](_Quality_t& quality, json& value) {
        return alarm.BuildVortaObjectValue(cache, true, false, previous, quality, value);
    });
}

std::string Ask(const ComputedAlarmOperand& operand, const std::shared_ptr<TestCache>& cache,
                const PreviousMeasurements& previous) {
    return OutcomeOf([&](_Quality_t& quality, json& value) {
        return operand.GetValue(cache, true, false, previous, "alarm", quality, value);
    });
}

TEST(ComputedAlarm, TheQualityOfTwoOperandsIsTheWorseOne) {
    // Rows: left 0 to 4, columns: right 0 to 4; U, G, B, Q as single letters.
    const std::string expected[] = {"BBBBB", "BGBQB", "BBBBB", "BQBQQ", "BBBQB"};
    for (int left = 0; left < 5; ++left) {
        for (int right = 0; right < 5; ++right) {
            const auto quality = ComputedAlarmElement::GetQualityFromOperands(static_cast<_Quality_t>(left),
                                                                              static_cast<_Quality_t>(right));
            EXPECT_EQ(ConvertToString(quality)[0], expected[left][static_cast<std::size_t>(right)]) << left << right;
        }
    }
}

TEST(ComputedAlarm, ThePeriodOfAPreviousValueIsAMinuteUnlessThreeRunsAreShorter) {
    EXPECT_EQ(PreviousValuePeriod(0), 0U);
    EXPECT_EQ(PreviousValuePeriod(10), 30'000U);
    EXPECT_EQ(PreviousValuePeriod(30), 60'000U);
    EXPECT_EQ(PreviousValuePeriod(100), 100'000U);
    EXPECT_EQ(PreviousValuePeriod(65535), 65'535'000U);
}

TEST(ComputedAlarm, APreviousValueIsReadAgedUnderTheAlarmsNameAndItsOwn) {
    const StoppedClock clock(NOW);
    const auto previous = MakePrevious();
    (*previous)["alarmstate"] = {1, QUALITY_QUESTIONABLE, NOW - LIMIT};
    (*previous)["alarmold"] = {2, QUALITY_GOOD, NOW - LIMIT - 1};
    (*previous)["alarm"] = {3, QUALITY_GOOD, NOW};
    (*previous)["alarmahead"] = {4, QUALITY_GOOD, NOW + 1};
    const auto ask = [](const char* key, const PreviousMeasurements& map) { return Ask(*Previous(key), nullptr, map); };
    EXPECT_EQ(ask("state", previous), "0 Questionable 1");
    EXPECT_EQ(ask("old", previous), "0 Bad 2");
    EXPECT_EQ(ask("", previous), "0 Good 3");
    EXPECT_EQ(ask("ahead", previous), "0 Good 4") << "the clock was set back";
    EXPECT_EQ(ask("other", previous), "42 Questionable \"before\"");
    EXPECT_EQ(ask("state", nullptr), "42 Questionable \"before\"");
    EXPECT_EQ(previous->at("alarmold").quality, QUALITY_GOOD);
    const StoppedClock unset(LIMIT - 1);
    EXPECT_EQ(ask("", previous), "0 Bad 3") << "a clock that was never set tells no age";
}

TEST(ComputedAlarm, AMeasurementIsReadFromItsSource) {
    const StoppedClock clock(NOW);
    const auto cache = MakeCache("0007");
    const MeasurementComputedAlarmOperand ofObject("left", ObjectOf({})), ofNothing("left", std::monostate{}),
        ofNull("left", std::shared_ptr<ElementData>());
    EXPECT_EQ(Ask(ofNothing, cache, nullptr), "42 Questionable \"before\"");
    EXPECT_EQ(Ask(ofNull, cache, nullptr), "42 Questionable \"before\"");
    EXPECT_EQ(Ask(ofObject, cache, nullptr), "0 Good 7");
    EXPECT_EQ(ofObject.GetFrameIndexes(), std::set<std::uint8_t>{0});
    const auto half = ObjectOf({.frame = 3});
    half->SetAdapter(TIMESTAMP, MakeConverter({.frame = 255}));
    const CapturedLog quiet(OrbaLogLevel::NONE);
    EXPECT_EQ(MeasurementComputedAlarmOperand("left", half).GetFrameIndexes(), std::set<std::uint8_t>{3});
    EXPECT_EQ(ofNothing.GetFrameIndexes(), std::set<std::uint8_t>{});
    EXPECT_EQ(Constant(1)->GetFrameIndexes(), std::nullopt);
    EXPECT_EQ(Constant(1)->GetPreviousValueName(), std::nullopt);
    EXPECT_EQ(Previous("")->GetPreviousValueName(), "");
    auto alarm = MakeAlarm(Measurement({.frame = 3}), Measurement({.frame = 255}), nullptr);
    EXPECT_EQ(alarm.GetFrameIndexes(), std::set<std::uint8_t>{3});
}

TEST(ComputedAlarm, ItsOutcomeFollowsOperandsThenChain) {
    const StoppedClock clock(NOW);
    const CapturedLog quiet(OrbaLogLevel::NONE);
    const auto good = MakeCache("0007"), bad = MakeCache("0007"), doubtful = MakeCache("0007"), stale = MakeCache("");
    bad->frames[0].quality = QUALITY_BAD;
    doubtful->frames[0].quality = QUALITY_QUESTIONABLE;
    stale->frames[0].timestamp = 0;
    const auto differ = std::make_shared<Differ>();
    const auto seven = Constant(7, "right");
    const auto noFrame = Measurement({.frame = 255});
    const std::tuple<Operand, Operand, std::shared_ptr<ProcessingChain>, std::shared_ptr<TestCache>, const char*>
        ROWS[] = {{Measurement(), seven, differ, good, "0 Good \"Inactive\""},
                  {Measurement(), Constant(8, "right"), differ, good, "0 Good \"Active\""},
                  {Measurement(), seven, differ, doubtful, "0 Questionable \"Inactive\""},
                  {Measurement(), seven, differ, bad, "42 Bad \"before\""},
                  {Measurement(), seven, differ, stale, "42 Bad \"before\""},
                  {Measurement(), seven, differ, nullptr, "42 Bad \"before\""},
                  {noFrame, seven, differ, good, "42 Bad \"before\""},
                  {seven, Measurement(), differ, bad, "42 Bad \"before\""},
                  {Previous("x", "left"), Measurement({}, "right"), differ, bad, "42 Bad \"before\""},
                  {Previous("x", "left"), Measurement({}, "right"), differ, good, "0 Bad \"Inactive\""},
                  {nullptr, seven, differ, good, "1 Bad \"before\""},
                  {seven, nullptr, differ, good, "1 Bad \"before\""},
                  {Measurement(), seven, nullptr, good, "1 Bad \"before\""},
                  {Measurement(), seven, MakeChain({}), good, "28 Bad \"before\""},
                  {Measurement(), seven, MakeChain({{}}, 9), good, "9 Bad \"before\""},
                  {Measurement(), seven, MakeChain({{}}, 0, 1), good, "0 Bad \"before\""}};
    for (const auto& [left, right, chain, cache, expected] : ROWS) {
        EXPECT_EQ(Evaluate(MakeAlarm(left, right, chain), cache, MakePrevious()), expected);
    }
}

TEST(ComputedAlarm, AHasChangedAlarmKeepsTheMeasurementForTheNextEvaluation) {
    const auto cache = MakeCache("0001");
    const auto previous = MakePrevious();
    const auto alarm = MakeAlarm(Measurement(), Previous("state"), std::make_shared<Differ>());
    const CapturedLog quiet(OrbaLogLevel::NONE);
    const std::tuple<std::uint64_t, const char*, _Quality_t, const char*> HISTORY[] = {
        {0, "0001", QUALITY_GOOD, "0 Bad \"Inactive\""},  // no previous value yet
        {10'000, "0001", QUALITY_GOOD, "0 Good \"Inactive\""},
        {20'000, "0002", QUALITY_GOOD, "0 Good \"Active\""},
        {30'000, "0002", QUALITY_GOOD, "0 Good \"Inactive\""},
        {40'000, "0003", QUALITY_BAD, "42 Bad \"before\""},    // kept nevertheless
        {50'000, "0003", QUALITY_GOOD, "0 Bad \"Inactive\""},  // against a Bad previous value
        {50'000 + LIMIT, "0004", QUALITY_GOOD, "0 Good \"Active\""},
        {50'001 + 2 * LIMIT, "0005", QUALITY_GOOD, "0 Bad \"Inactive\""}};  // the previous value is too old
    for (const auto& [time, registers, quality, expected] : HISTORY) {
        const StoppedClock clock(NOW + time);
        cache->frames[0] = {Hex(registers), NOW + time, quality};
        EXPECT_EQ(Evaluate(alarm, cache, previous), expected) << time;
        EXPECT_EQ((*previous)["alarmstate"].timestamp, NOW + time);
    }
    EXPECT_EQ(previous->size(), 1U);
    // A value that could not be read is not stored.
    const StoppedClock clock(NOW);
    EXPECT_EQ(Evaluate(alarm, nullptr, previous), "42 Bad \"before\"");
    EXPECT_EQ((*previous)["alarmstate"].value, 5);
}

TEST(ComputedAlarm, AnEvaluationIsLoggedInOrder) {
    const StoppedClock clock(NOW);
    const auto cache = MakeCache("0001");
    CapturedLog log(OrbaLogLevel::INFORMATION);
    Evaluate(MakeAlarm(Previous("state", "left"), Measurement({}, "right"), nullptr), cache, MakePrevious());
    Evaluate(MakeAlarm(Measurement(), Constant(1, "right"), MakeChain({{}}, 0, 5)), cache, nullptr);
    Evaluate(MakeAlarm(nullptr, nullptr, nullptr), cache, MakePrevious());
    EXPECT_EQ(log.Joined(), R"(
6[DataModel::ComputedAlarmElement] BuildVortaObjectValue: LeftOperand->GetValue() -> (type=2, quality=2, statusCode=value not available (42))
6[DataModel::ComputedAlarmElement] BuildVortaObjectValue: RightOperand->GetValue() -> (type=1, quality=1, statusCode=ok (0))
6[DataModel::ComputedAlarmElement] UpdatePreviousValues: Updating previous values
6[DataModel::ComputedAlarmElement] UpdatePreviousValues: Updated previous value for alarmstate
6[DataModel::ComputedAlarmElement] BuildVortaObjectValue: LeftOperand->GetValue() -> (type=1, quality=1, statusCode=ok (0))
6[DataModel::ComputedAlarmElement] BuildVortaObjectValue: RightOperand->GetValue() -> (type=0, quality=1, statusCode=ok (0))
3[DataModel::ComputedAlarmElement] BuildVortaObjectValue: Failed to get computed alarm value, status code is: ok (0)
3[DataModel::ComputedAlarmElement] UpdatePreviousValues: nullptr error
3[DataModel::ComputedAlarmElement] BuildVortaObjectValue: Failed to get computed alarm value)");
}

}  // namespace kzm::ModbusDeviceModel::Test::ComputedAlarmTest
