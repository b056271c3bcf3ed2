// A processing chain of one's own, which a profile names beside the library's.
#include <iostream>

#include "gateway/cache/RegisterCache.h"
#include "gateway/profile/ProfileLoader.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/DateTime/DateTime.h"

using namespace kzm::ModbusGateway;
using kz::orba::StatusCode;
using kzm::ModbusDeviceModel::ProcessingChain;
using kzm::ModbusDeviceModel::ProcessingChainOperandType;
using nlohmann::json;

namespace {

constexpr std::string_view PROFILE = R"({
    "frames": [{"name": "basic", "function": "input", "address": 8, "count": 1}],
    "objects": [{"name": "Temperature", "unit": "°F",
                 "value": {"chain": "fahrenheit", "inputs": {"celsius": {"address": 8, "type": "int16"}}}}]
})";

const ProcessingChain::Signature INPUTS{{"celsius", ProcessingChainOperandType::NUMBER}};

class Fahrenheit final : public ProcessingChain {
public:
    Fahrenheit() : ProcessingChain({INPUTS}, "fahrenheit", /*hasEnumOutput=*/false) {}

private:
    StatusCode Process(const json& parameters, json& result) const override {
        result = parameters.at("celsius").get<double>() * 1.8 + 32;
        return StatusCode::OK;
    }
};

}  // namespace

int main() {
    ChainRegistry chains;
    chains.Add({.name = "fahrenheit", .inputs = INPUTS, .labels = {}, .make = [](const json&) {
                    return std::make_shared<Fahrenheit>();
                }});
    const ProfileLoader::Result loaded = ProfileLoader::Load(PROFILE, chains);
    const auto& model = *loaded.profile->model;
    const auto cache = std::make_shared<RegisterCache>(model.GetFrames());
    cache->Update(0, std::vector<std::uint16_t>{0xFFF6}, kzm::DateTime::DateTime::GetRealTimeInMilliseconds());

    kz::orba::VortaORBAObject object("1", "Temperature", "", nullptr);
    const auto status = model.GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, object);
    std::cout << object.GetValue().dump() << '\n';
    return status == StatusCode::OK && object.GetValue().at("value") == 14 ? 0 : 1;
}
