#include "gateway/chains/ChainRegistry.h"

#include <stdexcept>

#include "gateway/profile/ProfileTesting.h"

namespace kzm::ModbusGateway::ChainRegistryTest {

using ModbusDeviceModel::ProcessingChain;
constexpr auto NUMBER = ModbusDeviceModel::ProcessingChainOperandType::NUMBER;

// True for an input above a limit.
class Above final : public ProcessingChain {
public:
    Above(double limit, const char* input, bool isLabel = false)
        : ProcessingChain({{{input, NUMBER}}}, "above", isLabel), mLimit(limit), mInput(input) {}

private:
    kz::orba::StatusCode Process(const json& parameters, json& result) const override {
        result = parameters[mInput].get<double>() > mLimit;
        return {};
    }

    double mLimit;
    const char* mInput;
};

CustomChain AboveFor(const char* name, const char* input) {
    return {name, {{input, NUMBER}}, ChainResult::BOOLEAN, {}, [input](const json& settings) {
                return std::make_shared<Above>(settings.at("limit").get<double>(), input);
            }};
}

const std::string PROFILE = R"({
    "frames": [{"name": "main", "function": "holding", "address": 0, "count": 2}],
    "elements": {"level": {"address": 0, "type": "uint16"}},
    "objects": [
        {"name": "High", "value": {"chain": "above", "inputs": {"value": "level"}, "settings": {"limit": 10}}}],
    "alarms": [
        {"name": "High", "priority": "LOW", "object": "HighAlarm", "alias": "a", "chain": "above left", "settings": {"limit": 10},
         "left": "level"}]
})";

TEST(ChainRegistry, AProfileNamesTheChainsOfItsProgram) {
    ChainRegistry chains;
    chains.Add(AboveFor("above", "value"));
    chains.Add(AboveFor("above left", "left"));
    chains.Add({"none", {{"value", NUMBER}}, ChainResult::NUMBER, {}, [](const json&) { return nullptr; }});
    chains.Add({"label", {{"value", NUMBER}}, ChainResult::LABEL, {"on"}, [](const json&) {
                    return std::make_shared<Above>(0, "value");
                }});
    chains.Add({"object",
                {{"value", ModbusDeviceModel::ProcessingChainOperandType::OBJECT}},
                ChainResult::BOOLEAN,
                {},
                [](const json&) { return std::make_shared<Above>(0, "value"); }});
    const auto loaded = ProfileLoader::Load(PROFILE, chains);
    ASSERT_EQ(Written(loaded.problems), "");
    EXPECT_EQ(loaded.profile->alarms.size(), 1U);
    const StoppedClock clock(NOW);
    EXPECT_EQ(ObjectOf(*loaded.profile, CacheOf(*loaded.profile, {11}), "High")["value"], true);
    const char* const rows[][3] = {
        {R"("limit": 10}}})", R"("limt": 10}}})", R"(5 /objects/0/value/settings: the chain "above": )"},
        {R"("chain": "above", )", R"("chain": "none", )", R"(5 /objects/0/value/settings: the chain "none": it could)"},
        {R"("chain": "above", )", R"("chain": "label", )", R"(5 /objects/0/value/settings: the chain "label": it was)"},
        {R"("chain": "above", )", R"("chain": "object", )",
         R"(5 /objects/0/value/inputs/value: this element cannot be an input of the chain "above"; needed: an object)"},
        {R"("chain": "above", )", R"("chain": "abov", )",
         R"(5 /objects/0/value/chain: there is no chain "abov"; did you mean "above" or "above left"? Allowed: "sum")"},
        {R"({"value": "level"})", R"({"x": "level"})",
         R"(5 /objects/0/value/inputs: the chain "above" does not have the inputs "x"; needed: exactly "value")"},
        {R"({"value": "level"})", R"({"value": {"constant": "x"}})",
         R"(5 /objects/0/value/inputs/value: this element cannot)"},
        {R"("above left")", R"("above")", R"(7 /alarms/0/inputs: the chain "above" does not have the inputs "left")"},
        {R"("above left")", R"("none")", R"(7 /alarms/0/chain: the chain "none" does not give true or false; allowed)"},
    };
    for (const auto& [old, replacement, problem] : rows) {
        const auto problems = Written(ProfileLoader::Load(Replaced(PROFILE, old, replacement), chains).problems);
        EXPECT_TRUE(problems.starts_with(problem)) << problems;
    }
}

TEST(ChainRegistry, RefusesWhatNoProfileCouldName) {
    ChainRegistry chains;
    chains.Add(AboveFor("above", "value"));
    auto noInputs = AboveFor("other", "value");
    noInputs.inputs.clear();
    auto noMaker = AboveFor("other", "value");
    noMaker.make = nullptr;
    auto withLabels = AboveFor("other", "value");
    withLabels.labels = {"on"};
    for (const auto& chain :
         {AboveFor("above", "value"), AboveFor("sum", "value"), AboveFor("", "value"), noInputs, noMaker, withLabels}) {
        EXPECT_THROW(chains.Add(chain), std::invalid_argument) << chain.name;
    }
    EXPECT_EQ(chains.GetChains().size(), 1U);
}

}  // namespace kzm::ModbusGateway::ChainRegistryTest
