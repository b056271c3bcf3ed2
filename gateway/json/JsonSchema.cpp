#include "gateway/json/JsonSchema.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <regex>
#include <stdexcept>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

using nlohmann::json;

struct JsonSchema::Schema {
    json text;
    std::map<std::string, std::regex> patterns;
};

namespace {

// What a schema says under a keyword; null for nothing.
const json& Argument(const json& schema, const char* keyword) {
    static const json NOTHING;
    const auto found = schema.find(keyword);
    return found == schema.end() ? NOTHING : *found;
}

bool IsOfType(const json& type, const json& value) {
    return type == "integer" ? value.is_number_integer() : type == value.type_name();
}

bool IsOneOfTypes(const json& types, const json& value) {
    return types.is_array() ? std::ranges::any_of(types, [&](const json& type) { return IsOfType(type, value); })
                            : IsOfType(types, value);
}

// 1.0 is not 1: whoever reads the document may ask for an integer.
bool IsOneOf(const json& values, const json& value) {
    return std::ranges::any_of(values,
                               [&](const json& known) { return known.type() == value.type() && known == value; });
}

// The size that a limit is about, of a value that has one: the characters of a text, or the members or items.
std::size_t SizeOf(const json& value) {
    return value.is_string()
               ? static_cast<std::size_t>(std::ranges::count_if(value.get_ref<const std::string&>(),
                                                                [](char byte) { return (byte & 0xC0) != 0x80; }))
               : value.size();
}

template <json::value_t TYPE>
bool IsAtLeast(const json& limit, const json& value) {
    return value.type() != TYPE || SizeOf(value) >= limit.get<std::size_t>();
}

template <json::value_t TYPE>
bool IsAtMost(const json& limit, const json& value) {
    return value.type() != TYPE || SizeOf(value) <= limit.get<std::size_t>();
}

// The keywords about a value itself; they hold for values of other types than theirs.
struct ValueKeyword {
    const char* name;
    bool (*holds)(const json& argument, const json& value);
};

constexpr ValueKeyword VALUE_KEYWORDS[] = {
    {"type", IsOneOfTypes},
    {"enum", IsOneOf},
    {"minimum", [](const json& limit, const json& value) { return !value.is_number() || value >= limit; }},
    {"maximum", [](const json& limit, const json& value) { return !value.is_number() || value <= limit; }},
    {"minLength", IsAtLeast<json::value_t::string>},
    {"maxLength", IsAtMost<json::value_t::string>},
    {"minItems", IsAtLeast<json::value_t::array>},
    {"maxItems", IsAtMost<json::value_t::array>},
    {"minProperties", IsAtLeast<json::value_t::object>},
    {"maxProperties", IsAtMost<json::value_t::object>},
};

// Those that Comparison knows, and those that only describe.
constexpr std::string_view OTHER_KEYWORDS[] = {
    "pattern", "required", "dependencies", "properties", "additionalProperties", "items",      "if", "then",
    "else",    "$ref",     "$schema",      "title",      "description",          "definitions"};

// Calls visit(schema) for every schema within one, and for it itself.
void ForEachSchema(const json& schema, const auto& visit) {
    visit(schema);
    for (const char* const member : {"items", "additionalProperties", "if", "then", "else"}) {
        if (Argument(schema, member).is_object()) {
            ForEachSchema(schema[member], visit);
        }
    }
    for (const char* const member : {"properties", "definitions"}) {
        for (const auto& [name, inner] : Argument(schema, member).items()) {
            ForEachSchema(inner, visit);
        }
    }
}

void RequireSupported(const json& schema) {
    for (const auto& [keyword, argument] : schema.items()) {
        const auto isThis = [&](const ValueKeyword& known) { return keyword == known.name; };
        if (!std::ranges::any_of(VALUE_KEYWORDS, isThis) &&
            std::ranges::find(OTHER_KEYWORDS, keyword) == std::end(OTHER_KEYWORDS)) {
            throw std::invalid_argument("unsupported keyword of a JSON Schema: " + keyword);
        }
    }
    for (const auto& [keyword, argument] : Argument(schema, "if").items()) {
        if (keyword != "type" && keyword != "required") {
            throw std::invalid_argument("unsupported keyword of a condition in a JSON Schema: " + keyword);
        }
    }
}

// The parts of the schema that apply to one value.
using Rules = std::vector<const json*>;

bool Holds(const json& condition, const json& value) {
    const json& required = Argument(condition, "required");
    return (!condition.contains("type") || IsOneOfTypes(condition["type"], value)) &&
           (!value.is_object() || std::ranges::all_of(required, [&](const json& member) {
               return value.contains(member.get_ref<const std::string&>());
           }));
}

std::string Describe(const Rules& rules) {
    std::string description;
    for (const json* rule : rules) {
        if (description.empty() && rule->contains("description")) {
            description = (*rule)["description"].get<std::string>();
        }
        if (rule->contains("enum")) {
            description += description.empty() ? "" : ": ";
            for (const auto& value : (*rule)["enum"]) {
                description += value.dump() + (&value == &(*rule)["enum"].back() ? "" : ", ");
            }
        }
    }
    return description;
}

// One document against a schema.
class Comparison {
public:
    Comparison(const json& schema, const std::map<std::string, std::regex>& patterns, const LocatedJson& document,
               Problems& problems)
        : mSchema(schema), mPatterns(patterns), mDocument(document), mProblems(problems) {}

    // Returns the document's root with null in place of what is not allowed.
    json CheckRoot() {
        json sound = mDocument.GetRoot();
        Check(mDocument.GetRoot(), "", Collected(mSchema, mDocument.GetRoot()));
        for (const auto& pointer : mFaulty) {
            const json::json_pointer place(pointer);
            if (sound.contains(place)) {  // not within what is faulty itself
                sound[place] = nullptr;
            }
        }
        return sound;
    }

private:
    void Check(const json& value, const std::string& pointer, const Rules& rules) {
        if (!std::ranges::all_of(rules, [&](const json* rule) { return IsAllowed(*rule, value); })) {
            Report(pointer, Cited(value) + " is not allowed here; allowed: " + Describe(rules));
            mFaulty.push_back(pointer);
        }
        if (!value.is_structured()) {
            return;
        }
        for (const json* rule : rules) {
            ReportMissingMembers(*rule, rules, value, pointer);
            ReportUnknownMembers(*rule, value, pointer);
        }
        for (const auto& [token, child] : value.items()) {
            Check(child, LocatedJson::Extend(pointer, token), RulesOfChild(rules, value, token, child));
        }
    }

    bool IsAllowed(const json& rule, const json& value) const {
        const bool matches = !value.is_string() || !rule.contains("pattern") ||
                             std::regex_search(value.get_ref<const std::string&>(),
                                               mPatterns.at(rule["pattern"].get_ref<const std::string&>()));
        return matches && std::ranges::all_of(VALUE_KEYWORDS, [&](const ValueKeyword& keyword) {
                   return !rule.contains(keyword.name) || keyword.holds(rule[keyword.name], value);
               });
    }

    Rules Collected(const json& rule, const json& value) const {
        Rules rules;
        Collect(rule, value, rules);
        return rules;
    }

    // Adds a rule, and those that it brings with it for a value.
    void Collect(const json& rule, const json& value, Rules& rules) const {
        rules.push_back(&rule);
        if (rule.contains("$ref")) {
            Collect(mSchema.at(json::json_pointer(rule["$ref"].get<std::string>().substr(1))), value, rules);
        }
        if (rule.contains("if")) {
            const char* const branch = Holds(rule["if"], value) ? "then" : "else";
            if (rule.contains(branch)) {
                Collect(rule[branch], value, rules);
            }
        }
    }

    Rules RulesOfChild(const Rules& parents, const json& parent, const std::string& token, const json& child) const {
        Rules rules;
        for (const json* rule : parents) {
            const json& properties = Argument(*rule, "properties");
            const json& others = Argument(*rule, parent.is_array() ? "items" : "additionalProperties");
            if (parent.is_object() && properties.contains(token)) {
                Collect(properties[token], child, rules);
            } else if (others.is_object()) {
                Collect(others, child, rules);
            }
        }
        return rules;
    }

    void ReportMissingMembers(const json& rule, const Rules& rules, const json& value, const std::string& pointer) {
        if (!value.is_object()) {
            return;
        }
        const auto require = [&](const json& members) {
            for (const json& name : members) {
                const auto& member = name.get_ref<const std::string&>();
                if (!value.contains(member)) {
                    Report(pointer, "the member " + Quoted(member) + " is missing; it is " +
                                        Describe(RulesOfChild(rules, value, member, nullptr)));
                }
            }
        };
        require(Argument(rule, "required"));
        for (const auto& [member, needed] : Argument(rule, "dependencies").items()) {
            if (value.contains(member)) {
                require(needed);
            }
        }
    }

    void ReportUnknownMembers(const json& rule, const json& value, const std::string& pointer) {
        if (!value.is_object() || Argument(rule, "additionalProperties") != false) {
            return;
        }
        Names allowed;
        for (const auto& property : Argument(rule, "properties").items()) {
            allowed.push_back(property.key());
        }
        for (const auto& member : value.items()) {
            if (std::ranges::find(allowed, member.key()) == allowed.end()) {
                Report(LocatedJson::Extend(pointer, member.key()),
                       "there is no such member here" + Alternatives(member.key(), allowed));
            }
        }
    }

    void Report(const std::string& pointer, std::string message) {
        mProblems.push_back({Problem::Severity::ERROR, mDocument.GetLine(pointer), pointer, std::move(message)});
    }

    const json& mSchema;
    const std::map<std::string, std::regex>& mPatterns;
    const LocatedJson& mDocument;
    Problems& mProblems;
    std::vector<std::string> mFaulty;  // pointers
};

}  // namespace

JsonSchema::JsonSchema(std::string_view schema) {
    auto parsed = std::make_unique<Schema>();
    parsed->text = json::parse(schema);
    ForEachSchema(parsed->text, [&](const json& part) {
        RequireSupported(part);
        if (part.contains("pattern")) {
            const auto pattern = part["pattern"].get<std::string>();
            parsed->patterns.emplace(pattern, pattern);
        }
    });
    mSchema = std::move(parsed);
}

JsonSchema::~JsonSchema() = default;

json JsonSchema::Check(const LocatedJson& document, Problems& problems) const {
    return Comparison(mSchema->text, mSchema->patterns, document, problems).CheckRoot();
}

}  // namespace kzm::ModbusGateway
