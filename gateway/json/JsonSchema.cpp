#include "gateway/json/JsonSchema.h"

#include <algorithm>
#include <limits>
#include <set>

#define VALIJSON_USE_EXCEPTIONS 1
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

using nlohmann::json;
using valijson::adapters::NlohmannJsonAdapter;

struct JsonSchema::Schema {
    json text;
    valijson::Schema compiled;
};

namespace {

// The parts of the schema that apply to one value.
using Rules = std::vector<const json*>;

// The validator's path to a value: "<root>", "[objects]", "[0]", ...
using Path = std::vector<std::string>;

// Puts the places where a document differs from a schema into words. The validator finds the places; what is allowed
// there is read from the schema.
class Comparison {
public:
    Comparison(const json& schema, const LocatedJson& document, Problems& problems)
        : mSchema(schema), mDocument(document), mProblems(problems), mSound(document.GetRoot()) {}

    void AddDifference(const Path& path, bool isAroundAnother) {
        const Place place = Follow(path);
        const std::size_t before = mProblems.size();
        AddMissingMembers(place);
        AddUnknownMembers(place);
        if (mProblems.size() == before && (!isAroundAnother || HasWrongSize(place))) {
            const std::string cited = Cited(*place.value);
            const std::string text = place.value->is_string() ? place.value->get<std::string>() : "";
            Report(place.pointer,
                   cited + " is not allowed here" + Alternatives(text, ChoicesOf(place.rules), Describe(place.rules)));
            mFaulty.push_back(place.pointer);
        }
    }

    json TakeSoundPart() {
        for (const auto& faulty : mFaulty) {
            const json::json_pointer pointer(faulty);
            if (mSound.contains(pointer)) {
                mSound[pointer] = nullptr;
            }
        }
        return std::move(mSound);
    }

private:
    struct Place {
        const json* value;
        std::string pointer;
        Rules rules;
    };

    Place Follow(const Path& path) const {
        Place place{&mDocument.GetRoot(), "", {}};
        Collect(mSchema, *place.value, place.rules);
        for (std::size_t i = 1; i < path.size(); ++i) {
            const std::string token = path[i].substr(1, path[i].size() - 2);
            const json& child = place.value->is_array() ? (*place.value)[std::stoul(token)] : place.value->at(token);
            place.rules = RulesOfChild(place, token, child);
            place.value = &child;
            place.pointer = LocatedJson::Extend(place.pointer, token);
        }
        return place;
    }

    // A rule, and those that it brings with it for a value.
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

    // A condition asks for a type or for members.
    static bool Holds(const json& condition, const json& value) {
        const json required = condition.value("required", json::array());
        return condition.value("type", value.type_name()) == value.type_name() &&
               std::all_of(required.begin(), required.end(),
                           [&](const json& member) { return value.contains(member.get<std::string>()); });
    }

    Rules RulesOfChild(const Place& parent, const std::string& token, const json& child) const {
        Rules rules;
        for (const json* rule : parent.rules) {
            if (parent.value->is_array()) {
                if (rule->contains("items")) {
                    Collect((*rule)["items"], child, rules);
                }
            } else if (rule->contains("properties") && (*rule)["properties"].contains(token)) {
                Collect((*rule)["properties"][token], child, rules);
            } else if (rule->contains("additionalProperties") && (*rule)["additionalProperties"].is_object()) {
                Collect((*rule)["additionalProperties"], child, rules);
            }
        }
        return rules;
    }

    static std::string Describe(const Rules& rules) {
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

    // The texts that are allowed where only some are.
    static Names ChoicesOf(const Rules& rules) {
        Names choices;
        for (const json* rule : rules) {
            for (const auto& value : rule->value("enum", json::array())) {
                if (value.is_string()) {
                    choices.push_back(value);
                }
            }
        }
        return choices;
    }

    // Whether a list or an object has too few or too many items, whatever else is wrong within it.
    static bool HasWrongSize(const Place& place) {
        const char* const least = place.value->is_array() ? "minItems" : "minProperties";
        const char* const most = place.value->is_array() ? "maxItems" : "maxProperties";
        return std::any_of(place.rules.begin(), place.rules.end(), [&](const json* rule) {
            return place.value->size() < rule->value(least, std::size_t{0}) ||
                   place.value->size() > rule->value(most, std::numeric_limits<std::size_t>::max());
        });
    }

    void AddMissingMembers(const Place& place) {
        for (const json* rule : place.rules) {
            AddMissingMembers(place, rule->value("required", json::array()));
            const json dependencies = rule->value("dependencies", json::object());
            for (const auto& [member, others] : dependencies.items()) {
                AddMissingMembers(place, place.value->contains(member) ? others : json::array());
            }
        }
    }

    void AddMissingMembers(const Place& place, const json& required) {
        for (const std::string member : required) {
            if (place.value->is_object() && !place.value->contains(member)) {
                Report(place.pointer, "the member " + Quoted(member) + " is missing; it is " +
                                          Describe(RulesOfChild(place, member, nullptr)));
            }
        }
    }

    void AddUnknownMembers(const Place& place) {
        for (const json* rule : place.rules) {
            if (place.value->is_object() && rule->value("additionalProperties", json(true)) == false) {
                AddUnknownMembers(place, rule->value("properties", json::object()));
            }
        }
    }

    void AddUnknownMembers(const Place& place, const json& properties) {
        Names allowed;
        for (const auto& property : properties.items()) {
            allowed.push_back(property.key());
        }
        for (const auto& member : place.value->items()) {
            if (!properties.contains(member.key())) {
                Report(LocatedJson::Extend(place.pointer, member.key()),
                       "there is no such member here" + Alternatives(member.key(), allowed));
            }
        }
    }

    void Report(const std::string& pointer, std::string message) {
        mProblems.push_back({Problem::Severity::ERROR, mDocument.GetLine(pointer), pointer, std::move(message)});
    }

    const json& mSchema;
    const LocatedJson& mDocument;
    Problems& mProblems;
    json mSound;
    std::vector<std::string> mFaulty;
};

}  // namespace

JsonSchema::JsonSchema(std::string_view schema) {
    auto parsed = std::make_unique<Schema>();
    parsed->text = json::parse(schema);
    valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(parsed->text), parsed->compiled);
    mSchema = std::move(parsed);
}

JsonSchema::~JsonSchema() = default;

json JsonSchema::Check(const LocatedJson& document, Problems& problems) const {
    valijson::ValidationResults results;
    valijson::Validator().validate(mSchema->compiled, NlohmannJsonAdapter(document.GetRoot()), &results);
    std::set<Path> paths;
    for (const auto& error : results) {
        paths.insert(error.context);
    }
    Comparison comparison(mSchema->text, document, problems);
    for (auto path = paths.begin(); path != paths.end(); ++path) {
        // The paths below this one follow it.
        const auto next = std::next(path);
        const bool isAroundAnother =
            next != paths.end() && next->size() > path->size() && std::equal(path->begin(), path->end(), next->begin());
        comparison.AddDifference(*path, isAroundAnother);
    }
    return comparison.TakeSoundPart();
}

}  // namespace kzm::ModbusGateway
