// Tells why a value is missing: here the frame has not been received yet, then the registers hold NaN.
#include <array>
#include <iostream>

#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Explanation.h"
#include "gateway/profile/ProfileLoader.h"
#include "kzm/DateTime/DateTime.h"

using namespace kzm::ModbusGateway;
using kzm::ModbusDeviceModel::DataModel::Reason;

namespace {

constexpr std::string_view PROFILE = R"({
    "frames": [{"name": "basic", "function": "holding", "address": 3027, "count": 2}],
    "objects": [{"name": "Voltage", "unit": "V", "value": {"address": 3027, "type": "float32"}}]
})";

Reason Explained(const LoadedProfile& profile, const std::shared_ptr<RegisterCache>& cache) {
    const Explanation explanation = Explain(profile, profile.objects.front(), {cache});
    std::cout << explanation.why.Text() << '\n' << explanation.ToJson().dump() << '\n';
    return explanation.why.reason;
}

}  // namespace

int main() {
    const ProfileLoader::Result loaded = ProfileLoader::Load(PROFILE);
    const auto cache = std::make_shared<RegisterCache>(loaded.profile->model->GetFrames());
    const Reason before = Explained(*loaded.profile, cache);
    cache->Update(0, std::array<std::uint16_t, 2>{0x7FC0, 0}, kzm::DateTime::DateTime::GetRealTimeInMilliseconds());
    const Reason after = Explained(*loaded.profile, cache);
    return before == Reason::NEVER_RECEIVED && after == Reason::NOT_FINITE ? 0 : 1;
}
