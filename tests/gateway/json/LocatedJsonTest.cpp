#include "gateway/json/LocatedJson.h"

#include <gtest/gtest.h>

namespace kzm::ModbusGateway::LocatedJsonTest {

TEST(LocatedJson, EachValueKnowsItsLine) {
    const char* text =
        "// comment\n"
        "{\"a\": 1\n"
        ",\"b~/c\": [10, 11,\n"
        "  12\n"
        "], /* two\n"
        "lines */ \"d\":\n"
        "  {\"e\": null}}\n";
    Problems problems;
    const LocatedJson document = LocatedJson::Parse(text, problems);
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(document.GetRoot(), nlohmann::json::parse(text, nullptr, true, /*ignore_comments=*/true));

    const std::pair<const char*, std::size_t> rows[] = {
        {"", 2},   {"/a", 2},   {"/b~0~1c", 3}, {"/b~0~1c/1", 3}, {"/b~0~1c/2", 4},
        {"/d", 6}, {"/d/e", 7}, {"/x", 2},      {"/d/x/y", 6},    {"/b~0~1c/3", 3}};
    for (const auto& [pointer, line] : rows) {
        EXPECT_EQ(document.GetLine(pointer), line) << pointer;
    }
}

TEST(LocatedJson, ATextThatIsNoJsonGivesOneProblemWithItsLineInPlainWords) {
    const std::string tooDeep(LocatedJson::MAX_DEPTH + 1, '['), bomb(100000, '[');
    const std::string longName = "{\"" + std::string(LocatedJson::MAX_NAME_LENGTH + 1, 'n') + "\": 1}";
    const std::tuple<std::string, std::size_t, const char*> rows[] = {
        {"", 1, "this is not JSON: unexpected end of input"},
        {"{\n\"a\": 1\n\"b\": 2}", 3, "unexpected string literal; expected '}'"},
        {"[1,\n\n]", 3, "unexpected ']'; expected '[', '{', or a literal; is there a comma too many before it?"},
        {"{\"a\": 1,\n}", 2, "unexpected '}'; expected string literal; is there a comma too many before it?"},
        {"[1\n,tru\n]", 2, "this is not JSON: invalid literal"},
        {"[12\n}", 2, "unexpected '}'"},
        {"\n\"\xFF\"", 2, "ill-formed UTF-8"},
        {"[1e999]", 1, "number overflow"},
        {"{}\n{}", 2, "expected end of input"},
        {"/* open", 1, "missing closing '*/'"},
        {tooDeep, 1, "more than 64 deep"},
        {bomb, 1, "more than 64 deep"},
        {longName, 1, "longer than"}};
    for (const auto& [text, line, message] : rows) {
        Problems problems;
        const LocatedJson document = LocatedJson::Parse(text, problems);
        ASSERT_EQ(problems.size(), 1U) << text.substr(0, 80);
        EXPECT_EQ(problems[0].line, line) << text.substr(0, 80);
        EXPECT_EQ(problems[0].message.find("json.exception"), std::string::npos);
        EXPECT_NE(problems[0].message.find(message), std::string::npos) << problems[0].message;
        EXPECT_FALSE(document.IsRead());
        EXPECT_TRUE(document.GetRoot().is_null());
    }
}

TEST(LocatedJson, NestingAndNamesReachTheirLimits) {
    Problems problems;
    const std::size_t lists = LocatedJson::MAX_DEPTH - 1;
    const std::string member = "{\"" + std::string(LocatedJson::MAX_NAME_LENGTH, 'n') + "\": 1}";
    EXPECT_TRUE(LocatedJson::Parse(std::string(lists, '[') + member + std::string(lists, ']'), problems).IsRead());
    EXPECT_TRUE(problems.empty());
}

TEST(LocatedJson, TheFirstOfTwoMembersOfOneNameCounts) {
    Problems problems;
    const LocatedJson document =
        LocatedJson::Parse("{\"a\": 1,\n\"a\": {\"b\": 1, \"b\": [{\"c\": 2}], \"d\": {}},\n\"e\": [3]}", problems);
    EXPECT_EQ(document.GetRoot(), nlohmann::json::parse(R"({"a": 1, "e": [3]})"));
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems[0].line, 2U);
    EXPECT_EQ(problems[0].pointer, "/a");
    EXPECT_NE(problems[0].message.find("on line 1"), std::string::npos);
    EXPECT_EQ(problems[1].pointer, "/a/b");
}

}  // namespace kzm::ModbusGateway::LocatedJsonTest
