#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "gateway/json/LocatedJson.h"

namespace kzm::ModbusGateway {

// An unsigned number in decimal digits or as "0x..."; nullopt for any other text.
std::optional<std::uint64_t> ParseNumber(std::string_view text);

// A value of a document that is being read, with its place and the list that its problems go to. The document, its
// content and the problems must outlive it.
class JsonCursor {
public:
    // At the root. `content`: the document's root, with null in place of faulty values.
    JsonCursor(const LocatedJson& document, const nlohmann::json& content, Problems& problems)
        : mDocument(&document), mValue(&content), mProblems(&problems) {}

    const nlohmann::json& operator*() const { return *mValue; }
    const nlohmann::json* operator->() const { return mValue; }

    // Whether there is such a member and it is not null.
    bool Has(const std::string& member) const { return !At(member)->is_null(); }
    // A member; null if there is none.
    JsonCursor At(const std::string& member) const;

    // Calls visit(name, cursor) for each member of an object, visit(number as text, cursor) for each item of a list.
    template <typename Visit>
    void ForEach(Visit visit) const {
        for (const auto& [token, value] : mValue->items()) {
            visit(token, JsonCursor(*this, token, value));
        }
    }

    // The text; empty for any other value.
    std::string Text() const;
    // An unsigned number, written as a number or as text.
    std::optional<std::uint64_t> Number() const;

    std::size_t GetLine() const { return mDocument->GetLine(mPointer); }
    const std::string& GetPointer() const { return mPointer; }
    void Error(std::string message) const { Report(Problem::Severity::ERROR, std::move(message)); }
    void Warning(std::string message) const { Report(Problem::Severity::WARNING, std::move(message)); }

private:
    JsonCursor(const JsonCursor& parent, const std::string& token, const nlohmann::json& value)
        : mDocument(parent.mDocument),
          mValue(&value),
          mProblems(parent.mProblems),
          mPointer(LocatedJson::Extend(parent.mPointer, token)) {}
    void Report(Problem::Severity severity, std::string message) const;

    const LocatedJson* mDocument;
    const nlohmann::json* mValue;
    Problems* mProblems;
    std::string mPointer;
};

}  // namespace kzm::ModbusGateway
