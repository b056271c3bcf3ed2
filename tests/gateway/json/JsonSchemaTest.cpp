#include "gateway/json/JsonSchema.h"

#include <gtest/gtest.h>

namespace kzm::ModbusGateway::JsonSchemaTest {

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

TEST(JsonSchema, EachDifferenceIsToldOnceAndFaultyValuesAreLeftOut) {
    const std::string schema = R"({
        "description": "an object",
        "required": ["name", "size"],
        "dependencies": {"list": ["unit"]},
        "additionalProperties": false,
        "properties": {
            "count": {"description": "a whole number", "type": "integer"},
            "unit": {"description": "a unit", "type": "string"},
            "name": {"description": "a text", "type": "string"},
            "size": {"description": "how large", "enum": ["small", 1]},
            "list": {"items": {"description": "a list of at least one", "type": "array", "minItems": 1}}}})";
    EXPECT_EQ(Checked(schema, R"({"nam": 1, "size": 2, "count": 1.0, "list": [[], [[]], {"a": 1}]})"),
              R"(: the member "name" is missing; it is a text
: the member "unit" is missing; it is a unit
/count: 1.0 is not allowed here; allowed: a whole number
/list/0: this list is not allowed here; allowed: a list of at least one
/list/2: this object is not allowed here; allowed: a list of at least one
/nam: there is no such member here; did you mean "name"? Allowed: "count", "list", "name", "size", "unit"
/size: 2 is not allowed here; allowed: how large: "small", 1
{"count":null,"list":[null,[[]],null],"nam":1,"size":null})");
}

}  // namespace kzm::ModbusGateway::JsonSchemaTest
