#include "DataModel/AttributeConstant.h"
#include "DataModel/AttributeProcessor.h"
#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"
#include "src/TestCache.h"
#include "src/TestChain.h"

namespace kzm::ModbusDeviceModel::Test::ProcessingTest {

using Type = ProcessingChainOperandType;
static_assert(std::is_convertible_v<Type, std::uint32_t> && NUMBER == 1, "a plain enumeration");

// An input with a fixed answer.
struct Input : AttributeConstant {
    Input(json value, _Quality_t answerQuality = QUALITY_GOOD, int number = 0)
        : AttributeConstant(value), answer(value), quality(answerQuality), status(static_cast<StatusCode>(number)) {}
    StatusCode GetEdmValue(const std::shared_ptr<CacheReadAccessInterface>&, bool, bool, _Quality_t& out,
                           json& value) override {
        out = quality;
        value = answer;
        return status;
    }
    json answer;
    _Quality_t quality;
    StatusCode status;
};

template <typename... Arguments>
std::shared_ptr<AttributeAdapter> In(Arguments... arguments) {
    return std::make_shared<Input>(arguments...);
}

std::string Compute(const AttributeProcessor::Inputs& inputs, std::shared_ptr<ProcessingChain> chain,
                    bool edm = false) {
    AttributeProcessor processor(inputs, std::move(chain));
    const auto ask = [&](_Quality_t& quality, json& value) {
        return edm ? processor.GetEdmValue(nullptr, true, false, quality, value)
                   : processor.GetIotValue("urn", nullptr, true, false, quality, value);
    };
    return OutcomeOf(ask, QUALITY_UNINITIALISED, nullptr);
}

TEST(ProcessingChain, AParameterMustHaveTheTypeOfItsSignature) {
    const json values[] = {json::object(), 2.5, 3, 3U, true, "a", nullptr, json::array(), json::binary({1})};
    const std::string accepted[] = {"100000000", "011100000", "001100000", "000010000", "000001000", "000000000"};
    const auto chain = MakeChain({});
    for (std::uint32_t type = 0; type < 6; ++type) {
        std::string row;
        for (const json& value : values) {
            row += chain->__CheckJsonValueType(value, static_cast<Type>(type)) ? '1' : '0';
        }
        EXPECT_EQ(row, accepted[type]) << type;
    }
}

TEST(ProcessingChain, ParametersMustSatisfyOneSignature) {
    const struct {
        std::vector<ProcessingChain::Signature> signatures;
        json parameters;
        int status;
    } ROWS[] = {{{}, {{"a", 1}}, 28},
                {{{}}, {{"a", 1}}, 0},
                {{{{"a", Type::NUMBER}}}, {{"a", 1}, {"b", 2}}, 0},
                {{{{"a", Type::STRING}}, {{"a", Type::NUMBER}}}, {{"a", 5}}, 0},
                {{{{"a", Type::INTEGER}}, {{"b", Type::NUMBER}}}, {{"a", 2.5}}, 44},
                {{{{"a", Type::NUMBER}}}, nullptr, 44}};
    CapturedLog log(OrbaLogLevel::INFORMATION);
    for (const auto& row : ROWS) {
        EXPECT_EQ(Number(MakeChain(row.signatures)->__VerifyParameters(row.parameters)), row.status);
    }
    EXPECT_EQ(log.Joined(), R"(
6[ModbusDeviceModel::ProcessingChain] [__VerifyParameters][chain] Error checking value type (expected=4), key=a, value=5 / {"a":5}
6[ModbusDeviceModel::ProcessingChain] [__VerifyParameters][chain] Error checking value type (expected=2), key=a, value=2.5 / {"a":2.5}
6[ModbusDeviceModel::ProcessingChain] [__VerifyParameters][chain] Missing key=b in parameters={"a":2.5}
6[ModbusDeviceModel::ProcessingChain] [__VerifyParameters][chain] Missing key=a in parameters=null)");
}

TEST(ProcessingChain, ExecuteComputesOnlyWhatIsVerified) {
    CapturedLog log;
    json result = "before";
    EXPECT_EQ(Number(MakeChain({})->Execute({{"a", 1}}, result)), 28);
    EXPECT_EQ(result, "before");
    EXPECT_EQ(Number(MakeChain({{}}, 7, 7)->Execute({{"a", 1}}, result)), 7);
    EXPECT_EQ(log.Joined(), R"(
3[ModbusDeviceModel::ProcessingChain] [Execute][chain] Error verifying parameters. Status code: out of range (28), parameters: {"a":1}
7[ModbusDeviceModel::ProcessingChain][trace] [Execute][chain] Processing chain executed, status code:status 7, parameters:{"a":1}, result:7)");
}

TEST(AttributeProcessor, ComputesOverItsInputsAndIsBadAsSoonAsOneIs) {
    const auto sum = MakeChain({{{"a", Type::NUMBER}}});
    CapturedLog log;
    EXPECT_EQ(Compute({{"a", In(1)}, {"b", In(2.5, QUALITY_BAD)}}, sum), R"(0 Bad {"a":1,"b":2.5})");
    EXPECT_EQ(log.Joined(), R"(
7[DataModel::AttributeProcessor][trace] [GetValue] urn:'urn', nb of input values = 2
3[DataModel::AttributeProcessor] [GetValue] Bad quality for input='b'
7[ModbusDeviceModel::ProcessingChain][trace] [Execute][chain] Processing chain executed, status code:ok (0), parameters:{"a":1,"b":2.5}, result:{"a":1,"b":2.5}
7[DataModel::AttributeProcessor][trace] [GetValue] Executed processing chain 'chain' with parameters={"a":1,"b":2.5}, result={"a":1,"b":2.5}, value={"a":1,"b":2.5}, quality=Bad, status = ok (0))");
    EXPECT_EQ(Compute({{"a", In(1, QUALITY_QUESTIONABLE)}, {"b", nullptr}}, sum, true), R"(0 Good {"a":1})");
}

TEST(AttributeProcessor, AnInputsFailureEndsTheRequest) {
    const auto chain = MakeChain({{}});
    CapturedLog log(OrbaLogLevel::INFORMATION);
    EXPECT_EQ(Compute({}, chain), "1 Good null");
    EXPECT_EQ(Compute({{"a", nullptr}}, chain), "1 Good null");
    EXPECT_EQ(
        Compute({{"a", In(1, QUALITY_BAD)}, {"b", In(2, QUALITY_GOOD, 42)}, {"c", In(3, QUALITY_GOOD, 7)}}, chain),
        "42 Bad null");
    EXPECT_EQ(Compute({{"a", In("x", QUALITY_BAD, 44)}}, chain), "44 Good null");
    EXPECT_EQ(Compute({{"a", In(1)}}, nullptr), "1 Good null");
    EXPECT_EQ(Compute({{"a", In(1)}}, MakeChain({{}}, 5, 9)), "5 Good null");
    EXPECT_EQ(log.Joined(), R"(
3[DataModel::AttributeProcessor] [GetValue] Missing input value for input='a'
3[DataModel::AttributeProcessor] [GetValue] Bad quality for input='a'
6[DataModel::AttributeProcessor] [GetValue] GetEdmValue failed for input='b', quality='Good', value='2', status = value not available (42)
3[DataModel::AttributeProcessor] [GetValue] GetEdmValue failed for input='a', quality='Bad', value='"x"', status = not found (44)
3[DataModel::AttributeProcessor] [GetValue] Processing chain execution failed, status = invalid argument (1)
3[DataModel::AttributeProcessor] [GetValue] Processing chain execution failed, status = status 5)");
}

TEST(AttributeProcessor, ALabelAsResultIsTranslated) {
    edm::dictionary::EdmEnumToIotValue::SetLabel("urn", "High", 3);
    edm::dictionary::EdmEnumToEdmValue::SetLabel("High", "EDM high");
    const AttributeProcessor::Inputs inputs{{"a", In(1)}};
    CapturedLog log(OrbaLogLevel::ERROR);
    EXPECT_EQ(Compute(inputs, MakeChain({{}}, 0, "High", true)), "0 Good 3");
    EXPECT_EQ(Compute(inputs, MakeChain({{}}, 0, "High", true), true), "0 Good \"EDM high\"");
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_EQ(Compute(inputs, MakeChain({{}}, 0, 5, true)), "1 Good null");
    EXPECT_EQ(Compute(inputs, MakeChain({{}}, 0, "Low", true), true), "44 Good null");
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::AttributeProcessor] [GetValue] Failed to convert result 5 to iot value, status = invalid argument (1)
[DataModel::AttributeProcessor] [GetValue] Failed to convert result "Low" to iot value, status = not found (44))");
}

TEST(AttributeProcessor, ReadsTheFramesOfAllInputs) {
    CapturedLog log(OrbaLogLevel::ERROR);
    std::set<std::uint8_t> frames{9};
    const auto compute = [&](const AttributeProcessor::Inputs& inputs) {
        return Number(AttributeProcessor(inputs, nullptr).ComputeAndGetFrameIndexes(frames));
    };
    EXPECT_EQ(compute({}), 1);
    EXPECT_EQ(compute({{"a", MakeConverter({.frame = 2})}, {"b", MakeConverter({.frame = 1})}}), 0);
    EXPECT_EQ(compute({{"a", MakeConverter({.frame = 3})}, {"b", nullptr}, {"c", MakeConverter({.frame = 4})}}), 1);
    EXPECT_EQ(compute({{"a", MakeConverter({.frame = 255})}, {"c", MakeConverter({.frame = 4})}}), 1);
    EXPECT_EQ(frames, (std::set<std::uint8_t>{1, 2, 3, 9}));
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::AttributeProcessor] [ComputeAndGetFrameIndexes]: Input value is null, status = invalid argument (1)
[DataModel::AttributeProcessor] [ComputeAndGetFrameIndexes]: Failed to get frames for 'a', status = invalid argument (1))");
    std::string className;
    EXPECT_EQ(Number(AttributeProcessor({}, nullptr).GetClassName(className)), 60);
    EXPECT_FALSE(AttributeProcessor({}, MakeChain({{}}, 0, "High", true)).HasEnumOutput());
}

}  // namespace kzm::ModbusDeviceModel::Test::ProcessingTest
