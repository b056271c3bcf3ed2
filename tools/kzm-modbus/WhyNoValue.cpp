#include "WhyNoValue.h"

#include "DataModel/DataObjectAdapter.h"
#include "Support/Status.h"
#include "gateway/json/NumberText.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
namespace Status = ModbusDeviceModel::Status;
using kz::orba::StatusCode;
using ModbusDeviceModel::DataModel::DataObjectAdapter;
using ModbusDeviceModel::DataModel::VortaObjectAdapter;

namespace {

// Where there is a date-time, its status hides the value's own from GetObject.
StatusCode StatusOfValue(VortaObjectAdapter& adapter, const Cache& cache, bool bigEndian, bool ignoreCacheAge) {
    nlohmann::json value;
    if (const auto* dataObject = dynamic_cast<const DataObjectAdapter*>(&adapter)) {
        auto quality = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
        return dataObject->GetValueWithAvailabilityAndQuality(cache, bigEndian, ignoreCacheAge, /*edm=*/false, quality,
                                                              value);
    }
    kz::orba::VortaORBAObject object("", "", "", nlohmann::json::object());
    return adapter.GetObject(cache, bigEndian, ignoreCacheAge, object);
}

std::string DescribeAge(std::uint64_t timestamp, std::uint64_t now) {
    if (timestamp > now) {
        return " has a timestamp in the future";
    }
    const std::uint64_t tenths = (now - timestamp) / 100;
    return " is out of date (" + NumberText(static_cast<double>(tenths) / 10, NumberPrecision::DIGITS_15) + " s)";
}

// `outOfDate`: whether only the age of a frame is in the way of the value.
std::string WhyNotAvailable(const LoadedProfile& profile, VortaObjectAdapter& adapter, const Cache& cache,
                            bool outOfDate) {
    for (const std::uint8_t frameIndex : adapter.GetFrameIndexes()) {
        std::string why = WhyFrameCannotBeUsed(profile, frameIndex, *cache);
        if (!why.empty() && outOfDate == (cache->GetFrameTimestamp(frameIndex) != 0)) {
            return why;
        }
    }
    return "not available or out of range";
}

}  // namespace

std::string WhyFrameCannotBeUsed(const LoadedProfile& profile, std::uint8_t frameIndex, const RegisterCache& cache) {
    const std::string frame = "frame " + profile.frameNames.at(frameIndex);
    const std::uint64_t timestamp = cache.GetFrameTimestamp(frameIndex);
    if (timestamp == 0) {
        return frame + " was never received";
    }
    const std::uint64_t now = DateTime::DateTime::GetRealTimeInMilliseconds();
    return ModbusDeviceModel::DeviceCache::IsFresh(timestamp, now) ? "" : frame + DescribeAge(timestamp, now);
}

std::string WhyNoValue(const LoadedProfile& profile, VortaObjectAdapter& adapter, const Cache& cache) {
    const bool bigEndian = profile.model->IsBigEndian();
    const StatusCode status = StatusOfValue(adapter, cache, bigEndian, /*ignoreCacheAge=*/false);
    if (status == Status::MEASUREMENT_NOT_AVAILABLE) {
        return "not available by its flag";
    }
    if (status == Status::NOT_AVAILABLE) {
        const StatusCode atAnyAge = StatusOfValue(adapter, cache, bigEndian, /*ignoreCacheAge=*/true);
        return WhyNotAvailable(profile, adapter, cache, atAnyAge != Status::NOT_AVAILABLE);
    }
    return kz::orba::ConvertStatusCodeToString(status);
}

}  // namespace kzm::ModbusTool
