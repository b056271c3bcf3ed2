#include "gateway/modbus/FrameRequests.h"

#include <algorithm>

#include "gateway/cache/FrameAddresses.h"
#include "gateway/modbus/RequestLimits.h"

namespace kzm::ModbusGateway {

namespace {

std::vector<FrameRequests::Range> RangesOf(const std::vector<std::uint16_t>& sorted, std::uint16_t longest) {
    std::vector<FrameRequests::Range> ranges;
    for (const std::uint16_t address : sorted) {
        if (!ranges.empty() && ranges.back().count < longest && address == ranges.back().first + ranges.back().count) {
            ++ranges.back().count;
        } else {
            ranges.push_back({address, 1});
        }
    }
    return ranges;
}

}  // namespace

FrameRequests::FrameRequests(const ModbusDeviceModel::DeviceProfile::FrameData& frame)
    : functionCode(frame.mFunctionCode) {
    const std::vector<std::uint16_t> addresses = AddressesOf(frame);
    std::vector<std::uint16_t> sorted = addresses;
    std::ranges::sort(sorted);
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    ranges = RangesOf(sorted, MaxReadCount(functionCode));
    for (const std::uint16_t address : addresses) {
        places.push_back(static_cast<std::size_t>(std::ranges::lower_bound(sorted, address) - sorted.begin()));
    }
}

}  // namespace kzm::ModbusGateway
