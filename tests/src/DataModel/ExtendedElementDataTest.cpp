#include "DataModel/ExtendedElementData.h"

#include "DataModel/IValueProcesser.h"
#include "src/TestElement.h"

namespace kzm::ModbusDeviceModel::Test::ExtendedElementDataTest {

// Answers by name and records the questions.
struct Answers : ServiceImpl::IValueProcesser {
    explicit Answers(std::map<std::string, json> given) : answers(std::move(given)) {}
    bool GetValue(const std::string& name, json& value) override {
        asked += name + "=" + value.dump() + " ";
        if (!answers.count(name)) {
            return false;
        }
        value = answers[name];
        return true;
    }
    std::map<std::string, json> answers;
    std::string asked;
};

const std::vector<LogicCodeDependency> DEPENDENCIES{{"a", "", 1}, {"b", "x", "default"}};

std::string Extended(const Traits& traits, const std::string& hex, ServiceImpl::IValueProcesser* processer = nullptr) {
    auto element = MakeExtended(traits, DEPENDENCIES);
    return Built(element, hex, /*deviceBigEndian=*/false, processer);
}

TEST(ExtendedElementData, TakesTheBytesAsTheyWereReadWhateverOrderAndMask) {
    EXPECT_EQ(Extended({.code = 14, .registers = 2}, "00010002"), "u65538");
    EXPECT_EQ(Extended({.code = 14, .mask = "00000000", .registers = 2}, "00010002"), "u65538");
    EXPECT_EQ(Extended({.code = 34, .registers = 4}, "0000000000010002"), "f65538.0");
    EXPECT_EQ(Extended({.code = 2}, ""), "refused");
    EXPECT_EQ(Extended({.code = 255}, "0001"), "refused");
    const StandIn::CapturedLog quiet(Log::OrbaLogLevel::NONE);
    EXPECT_EQ(Extended({.code = 2, .mask = "FF"}, "0001"), "refused!");
    const auto element = MakeExtended({}, DEPENDENCIES);
    EXPECT_EQ(element.GetSlaveOffset(), -2);
    EXPECT_EQ(element.GetExtraParameter(), 7U);
    EXPECT_EQ(element.GetLogicCodeDependency()->size(), 2U);
    EXPECT_EQ(MakeElement({}).GetSlaveOffset(), 0);
    EXPECT_EQ(MakeElement({}).GetLogicCodeDependency(), nullptr);
}

TEST(ExtendedElementData, ThePatternIsComparedAsTextWithoutLeadingZeros) {
    const std::tuple<const char*, const char*, const char*> ROWS[] = {
        {"0xFFFF", "FFFF", "null!"}, {"0xffff", "FFFF", "u65535"}, {"0xFF", "00FF", "null!"},
        {"0x00FF", "00FF", "u255"},  {"0x0", "0000", "null!"},     {"0x1234", "12345678", "null!"}};
    for (const auto& [pattern, bytes, expected] : ROWS) {
        EXPECT_EQ(Extended({.code = 2, .pattern = pattern}, bytes), expected) << pattern;
    }
}

TEST(ExtendedElementData, AScaledPowerTakesItsExponentFromTheLastNumericAnswer) {
    // clang-format off
    const struct {
        std::map<std::string, json> answers;
        double scale;
        const char* expected;
    } ROWS[] = {
        {{}, 1, "f12345.0"}, {{{"a", -2}}, 1, "f123.45"}, {{{"a", 3U}}, 2, "f24690000.0"},
        {{{"a", 1}, {"b", "-1"}}, 1, "f1234.5"}, {{{"a", 1}, {"b", "one"}}, 1, "f123450.0"},
        {{{"a", 1.0}, {"b", true}}, 0.5, "f61720.0"}, {{{"a", 400}}, 1, "null!"}, {{{"a", -400}}, 1, "f0.0"},
        {{}, -1, "null!"}, {{}, 1e18, "null!"}, {{}, 3e19, "null!"}, {{}, INFINITY, "null!"}, {{}, NAN, "null!"}};
    // clang-format on
    for (const auto& row : ROWS) {
        for (const int code : {34, 35, 36, 37}) {
            const CapturedLog log;
            Answers answers(row.answers);
            EXPECT_EQ(Extended({.code = code, .scale = row.scale, .registers = 2}, "00003039", &answers), row.expected)
                << json(row.answers) << " " << row.scale;
            EXPECT_EQ(answers.asked, "a=1 b=\"default\" ");
        }
    }
    // A text counts if it is a number, with or without blanks around it.
    for (const char* const text : {"2", "+2", " 2", "2 ", "\t+2.0 ", "0.2e1"}) {
        Answers answers(std::map<std::string, json>{{"b", text}});
        EXPECT_EQ(Extended({.code = 34}, "0007", &answers), "f700.0") << text;
    }
    const json noAnswers[] = {"",    " ",   "3abc", "0x3",    "inf",     "-inf", "nan",
                              "+-3", "+ 3", "3 3",  INFINITY, -INFINITY, NAN,    "1e999"};
    for (const json& answer : noAnswers) {
        CapturedLog log;
        Answers answers({{"a", -1}, {"b", answer}});
        EXPECT_EQ(Extended({.code = 34}, "0007", &answers), "f0.7") << answer;
        ASSERT_EQ(log.Lines().size(), 1U) << answer;
        EXPECT_EQ(log.Texts(OrbaLogLevel::WARNING).at(0), "[DataModel::ExtendedElementData] [Build] Exponent " +
                                                              answer.dump() + " is not a finite number and is ignored");
    }
    Answers answers({{"a", 2}});
    EXPECT_EQ(Extended({.code = 8, .scale = 0.5}, "0003", &answers), "f1.5");
    EXPECT_NE(answers.asked, "");
    EXPECT_EQ(Extended({.code = 36, .registers = 4}, "FFFFFFFFFFFFFFFF"), "f1.8446744073709552e+19");
}

TEST(ExtendedElementData, APowerIsComputedFromARecordAlone) {
    DataModel::myData data;
    data.SetUnsigned(7);
    json value;
    for (const auto& [exponent, expected] : {std::pair(-2.0, 0.07), {0.0, 7.0}, {3.0, 7000.0}}) {
        MakeExtended({}, DEPENDENCIES).OperateScaledPower(data, value, exponent, 1.0);
        EXPECT_EQ(value, expected) << exponent;
    }
}

}  // namespace kzm::ModbusDeviceModel::Test::ExtendedElementDataTest
