#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

#include "gateway/json/LocatedJson.h"

namespace kzm::ModbusGateway {

// Checks documents against a JSON Schema (draft 7). Where the schema has a "description", it says what is allowed there
// and becomes part of the messages. An "if" may ask for types and members only. Used by many threads.
class JsonSchema {
public:
    // Throws for a text that is not JSON or no schema.
    explicit JsonSchema(std::string_view schema);
    ~JsonSchema();

    // Appends every difference of a document from the schema to `problems`, and returns the document with null in place
    // of each value that differs. What is left has the types and ranges of the schema, but required members may be
    // missing, and unknown ones are still there.
    nlohmann::json Check(const LocatedJson& document, Problems& problems) const;

private:
    struct Schema;
    std::unique_ptr<const Schema> mSchema;
};

}  // namespace kzm::ModbusGateway
