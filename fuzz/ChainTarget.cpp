// Makes chains with settings of the input, and runs them with parameters of the input.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "Support/Status.h"
#include "fuzz/Input.h"
#include "gateway/chains/ChainFactory.h"
#include "gateway/chains/ChainTable.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusGateway;
using nlohmann::json;
namespace Status = ModbusDeviceModel::Status;

const json UNTOUCHED = json::binary({1});

Names TakeInputs(const ChainRow& row, Input& input) {
    Names inputs(row.inputs.names.begin(), row.inputs.names.end());
    for (auto count = inputs.empty() ? input.UpTo(4U) : 0; count > 0; --count) {
        inputs.push_back(std::string(count, 'a'));
    }
    if (input.UpTo(15) == 1) {
        inputs.push_back(input.Text());
    }
    return inputs;
}

json TakeLabels(Input& input) {
    const bool byBit = input.ConsumeBool();
    json labels = byBit ? json::array() : json::object();
    for (auto count = input.UpTo(4U); count > 0; --count) {
        if (byBit) {
            labels.push_back({{"bit", input.UpTo(64)}, {"label", input.Text()}});
        } else {
            labels[input.Text()] = input.Text();
        }
    }
    return labels;
}

json TakeNumber(Input& input) {
    switch (input.UpTo(2)) {
        case 1:
            return input.ConsumeIntegral<std::int64_t>();
        case 2:
            return input.ConsumeIntegral<std::uint64_t>();
        default:
            return input.Double();
    }
}

json TakeSettings(const ChainRow& row, Input& input) {
    json settings = json::object();
    for (const ChainSetting& setting : row.settings) {
        const std::string name(setting.name);
        switch (input.UpTo(3)) {
            case 1:
                break;
            case 2:
                settings[name] = input.Json();
                break;
            default:
                settings[name] = name == "labels"    ? TakeLabels(input)
                                 : name == "bit"     ? json(input.UpTo(64))
                                 : name == "default" ? json(input.Text())
                                                     : TakeNumber(input);
        }
    }
    if (input.UpTo(15) == 1) {
        settings = input.Json();
    }
    // They stand in a profile, so they are JSON that a text can say.
    return json::parse(settings.dump(-1, ' ', false, json::error_handler_t::replace));
}

json TakeParameters(const ChainRow& row, const Names& inputs, Input& input) {
    json parameters = json::object();
    const auto& types = row.types[input.UpTo(row.types.size() - 1)];
    for (const auto& name : inputs) {
        const auto type = parameters.empty() ? types.first : types.others;
        using Type = ModbusDeviceModel::ProcessingChainOperandType;
        parameters[name] = input.UpTo(15) == 1     ? input.Json()
                           : type == Type::BOOLEAN ? json(input.ConsumeBool())
                           : type == Type::STRING  ? json(input.Text())
                           : type == Type::INTEGER ? json(input.ConsumeIntegral<std::int64_t>())
                                                   : TakeNumber(input);
    }
    return parameters;
}

void RequireResult(const ChainRow& row, const Names& labels, const json& result) {
    switch (row.result) {
        case ChainResult::NUMBER:
            return Require(result.is_number() && IsFinite(result), "a number is finite");
        case ChainResult::BOOLEAN:
            return Require(result.is_boolean(), "a decision is true or false");
        case ChainResult::LABEL:
            return Require(result.is_string() && std::ranges::count(labels, result.get<std::string>()) == 1,
                           "a label is one of those that were told");
    }
}

void RequireFaults(const ChainFactory::Result& made) {
    Require(made.faults.empty() == (made.chain != nullptr), "there is a chain, or it is told why not");
    for (const auto& fault : made.faults) {
        Require(!fault.message.empty(), "a fault is told");
    }
}

void Run(const ChainRow& row, const ChainFactory::Result& made, const json& parameters) {
    RequireFaults(made);
    if (!made.chain) {
        return;
    }
    json result = UNTOUCHED;
    const auto status = made.chain->Execute(parameters, result);
    Require(made.chain->HasEnumOutput() == (row.result == ChainResult::LABEL), "labels are told to be such");
    if (status == Status::SUCCESS) {
        RequireResult(row, made.labels, result);
    } else {
        Require(result == UNTOUCHED, "without a result nothing is changed");
        Require(status == Status::NOT_FOUND || status == Status::OUT_OF_RANGE || status == Status::NOT_AVAILABLE,
                "the status is a known one");
    }
}

int Decide(const char* name, const json& settings, const json& sides) {
    const auto made = ChainFactory::Make(name, {"left", "right"}, settings);
    Require(made.chain != nullptr, "a finite dead band is allowed");
    json result;
    Require(made.chain->Execute(sides, result) == Status::SUCCESS, "finite numbers can be compared");
    return result.get<bool>() ? 1 : 0;
}

void Compare(const json& left, const json& right, const json& deadBand) {
    if (!IsFinite({left, right, deadBand}) || deadBand < 0) {
        return;
    }
    const json settings{{"deadBand", deadBand}};
    const json sides{{"left", left}, {"right", right}};
    const int equal = Decide("equal", settings, sides);
    const int less = Decide("less", settings, sides);
    const int greater = Decide("greater", settings, sides);
    Require(less + equal + greater == 1, "one number is less, equal or greater");
    Require(Decide("less or equal", settings, sides) == 1 - greater, "less or equal is not greater");
    Require(Decide("greater or equal", settings, sides) == 1 - less, "greater or equal is not less");
    Require(Decide("not equal", settings, sides) == 1 - equal, "not equal is not equal");
    Require(Decide("less", settings, {{"left", right}, {"right", left}}) == greater, "sides can be exchanged");
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    const auto rows = AllChains();
    const ChainRow& row = rows[input.UpTo(rows.size() - 1)];
    const Names inputs = TakeInputs(row, input);
    const json settings = TakeSettings(row, input);
    const json parameters = TakeParameters(row, inputs, input);
    const std::string name = input.UpTo(31) == 1 ? input.Text() : std::string(row.name);
    const auto made = ChainFactory::Make(name, inputs, settings);
    if (name == row.name) {
        Run(row, made, parameters);
    } else {
        RequireFaults(made);
    }
    RequireFaults(ChainFactory::MakeForAlarm(name, "left", "right", settings));
    Compare(TakeNumber(input), TakeNumber(input), TakeNumber(input));
    return 0;
}
