#include "gateway/json/JsonSchema.h"

#include <gtest/gtest.h>

namespace kzm::ModbusGateway {

namespace {

// The problems of a document, "line pointer: message" each, and the sound part.
std::string Checked(const std::string& schema, const std::string& document) {
    Problems problems;
    const LocatedJson located = LocatedJson::Parse(document, problems);
    const nlohmann::json sound = JsonSchema(schema).Check(located, problems);
    SortByLine(problems);
    std::string text;
    for (const Problem& problem : problems) {
        text += problem.pointer + ": " + problem.message + "\n";
    }
    return text + sound.dump();
}

TEST(JsonSchema, WhatTheValidatorFindsIsTold) {
    const struct {
        const char* rule;
        const char* allowed;  // a list
        const char* refused;
    } rows[] = {
        {R"("type": "integer")", "[1, -1, 18446744073709551615]", R"([1.0, "1", true, null, [1], {"a": 1}])"},
        {R"("required": ["a"])", R"([{"a": null}, 1])", "[{}]"},
        {R"("dependencies": {"a": ["b"]})", R"([{"a": 1, "b": 1}, {"b": 1}, 1])", R"([{"a": 1}])"},
        {R"("properties": {"a": {"type": "string"}})", R"([{"a": ""}, {"b": 1}])", R"([{"a": 1}])"},
        {R"("properties": {"a": {}}, "additionalProperties": false)", R"([{"a": 1}, 1])", R"([{"b": 1}])"},
        {R"("properties": {"a": {}}, "additionalProperties": {"type": "string"})", R"([{"a": 1, "b": ""}])",
         R"([{"b": 1}])"},
        {R"("items": {"type": "string"})", R"([[""], [], {"a": 1}])", "[[1]]"},
        {R"("if": {"required": ["a"]}, "then": {"maxProperties": 1}, "else": {"required": ["b"]})",
         R"([{"a": 1}, {"b": 1}, 1])", R"([{}, {"a": 1, "b": 1}])"},
        {R"("if": {"type": "string"}, "then": {"minLength": 1})", R"(["a", 1])", R"([""])"},
        {R"("$ref": "#/definitions/text")", R"([""])", "[1]"},
    };
    for (const auto& row : rows) {
        const std::string schema = R"({"definitions": {"text": {"type": "string"}}, )" + std::string(row.rule) + "}";
        for (const bool isAllowed : {true, false}) {
            for (const auto& value : nlohmann::json::parse(isAllowed ? row.allowed : row.refused)) {
                EXPECT_EQ(Checked(schema, value.dump()) == value.dump(), isAllowed) << row.rule << ' ' << value;
            }
        }
    }
}

TEST(JsonSchema, EachDifferenceIsToldOnceAndFaultyValuesAreLeftOut) {
    const std::string schema = R"({
        "description": "an object",
        "required": ["name", "size"],
        "additionalProperties": false,
        "properties": {
            "name": {"description": "a text", "type": "string"},
            "size": {"description": "how large", "enum": ["small", 1]},
            "list": {"items": {"description": "a list of at least one", "type": "array", "minItems": 1}}}})";
    EXPECT_EQ(Checked(schema, R"({"nam": 1, "size": 2, "list": [[], [[]], {"a": 1}]})"),
              R"(: the member "name" is missing; it is a text
/list/0: this list is not allowed here; allowed: a list of at least one
/list/2: this object is not allowed here; allowed: a list of at least one
/nam: there is no such member here; did you mean "name"? Allowed: "list", "name", "size"
/size: 2 is not allowed here; allowed: how large: "small", 1
{"list":[null,[[]],null],"nam":1,"size":null})");
}

}  // namespace

}  // namespace kzm::ModbusGateway
