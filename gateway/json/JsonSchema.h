#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

#include "gateway/json/LocatedJson.h"

namespace kzm::ModbusGateway {

// What a kind of document may hold, by a JSON Schema (draft 7). Where the schema has a "description", it says what is
// allowed there and becomes part of the messages. Understood are types, ranges, patterns, enumerations, members, items,
// dependencies, if-then-else and references; a "true" or "false" in a schema's place is not. Read by many threads.
class JsonSchema {
public:
    explicit JsonSchema(std::string_view schema);
    ~JsonSchema();

    // Puts every difference of a document from the schema into `problems`, and returns the document with null for each
    // value that differs. What is left has the types and ranges of the schema, but required members may be missing, and
    // unknown ones there.
    nlohmann::json Check(const LocatedJson& document, Problems& problems) const;

private:
    struct Schema;
    std::unique_ptr<const Schema> mSchema;
};

}  // namespace kzm::ModbusGateway
