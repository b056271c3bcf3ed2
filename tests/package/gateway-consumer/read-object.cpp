// Loads a device profile, feeds its registers as a reader of one's own would, and prints an object.
#include <array>
#include <iostream>

#include "gateway/cache/RegisterCache.h"
#include "gateway/profile/ProfileLoader.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/DateTime/DateTime.h"

using namespace kzm::ModbusGateway;

namespace {

constexpr std::string_view PROFILE = R"({
    "frames": [{"name": "basic", "function": "holding", "address": 3027, "count": 1}],
    "objects": [{"name": "Voltage", "unit": "V", "value": {"address": 3027, "type": "uint16-to-float", "scale": 0.5}}]
})";

}  // namespace

int main() {
    const ProfileLoader::Result loaded = ProfileLoader::Load(PROFILE);
    for (const Problem& problem : loaded.problems) {
        std::cerr << "line " << problem.line << ": " << problem.message << '\n';
    }
    if (loaded.profile == nullptr) {
        return 1;
    }
    const auto& model = *loaded.profile->model;
    const auto cache = std::make_shared<RegisterCache>(model.GetFrames());
    cache->Update(0, std::array<std::uint16_t, 1>{461}, kzm::DateTime::DateTime::GetRealTimeInMilliseconds());

    const LoadedProfile::Object& voltage = loaded.profile->objects.front();
    kz::orba::VortaORBAObject object("1", voltage.name, voltage.alias, voltage.structure);
    const auto status = model.GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, object);
    std::cout << object.GetValue().dump() << '\n';
    return status == kz::orba::StatusCode::OK && object.GetValue().at("value") == 230.5 ? 0 : 1;
}
