#include "gateway/modbus/ModbusReader.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "gateway/cache/FrameAddresses.h"
#include "gateway/modbus/ModbusConnection.h"
#include "gateway/modbus/RequestLimits.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusGateway {

using DateTime::DateTime;
using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceCache::QUALITY_BAD;
using ModbusDeviceModel::DeviceProfile::FrameData;

namespace {

// Registers side by side on the device, which one request reads.
struct Run {
    std::uint16_t first;
    std::uint16_t count;
};

// How the registers of a frame are asked for, and where each stands among those of the runs.
struct FramePlan {
    explicit FramePlan(const FrameData& frame);

    ModbusFunctionCode functionCode;
    std::vector<Run> runs;
    std::vector<std::size_t> places;
};

std::vector<Run> RunsOf(const std::vector<std::uint16_t>& sorted, std::uint16_t longest) {
    std::vector<Run> runs;
    for (const std::uint16_t address : sorted) {
        if (!runs.empty() && runs.back().count < longest && address == runs.back().first + runs.back().count) {
            ++runs.back().count;
        } else {
            runs.push_back({address, 1});
        }
    }
    return runs;
}

FramePlan::FramePlan(const FrameData& frame) : functionCode(frame.mFunctionCode) {
    const std::vector<std::uint16_t> addresses = AddressesOf(frame);
    const std::set<std::uint16_t> each(addresses.begin(), addresses.end());
    const std::vector<std::uint16_t> sorted(each.begin(), each.end());
    runs = RunsOf(sorted, MaxReadCount(functionCode));
    for (const std::uint16_t address : addresses) {
        places.push_back(static_cast<std::size_t>(std::ranges::lower_bound(sorted, address) - sorted.begin()));
    }
}

}  // namespace

class ModbusReader::Impl {
public:
    Impl(ModbusSettings connection, const std::vector<FrameData>& frames, RegisterCache& cache)
        : mLine(std::move(connection)), mPlans(frames.begin(), frames.end()), mCache(cache) {}

    Round ReadAllFrames();

private:
    using Outcome = ModbusConnection::Outcome;

    ModbusConnection::Result ReadFrame(std::uint8_t frameIndex);
    ModbusConnection::Result AskFor(const FramePlan& plan);
    void Keep(std::uint8_t frameIndex);

    ModbusConnection mLine;
    std::vector<FramePlan> mPlans;
    RegisterCache& mCache;
    std::vector<std::uint16_t> mReceived;  // of the runs of the frame that is being read
    std::vector<std::uint16_t> mRegisters;
};

ModbusReader::Round ModbusReader::Impl::ReadAllFrames() {
    Round round;
    for (std::size_t index = 0; index < mPlans.size(); ++index) {
        const auto frameIndex = static_cast<std::uint8_t>(index);
        ModbusConnection::Result result{Outcome::UNREACHABLE, round.connectionError};
        if (round.connectionError.empty()) {
            result = ReadFrame(frameIndex);
        }
        if (result.outcome == Outcome::UNREACHABLE) {
            round.connectionError = result.reason;
        }
        if (result.outcome == Outcome::ANSWERED) {
            ++round.framesRead;
        } else {
            round.errors.push_back({frameIndex, std::move(result.reason)});
        }
    }
    return round;
}

ModbusConnection::Result ModbusReader::Impl::ReadFrame(std::uint8_t frameIndex) {
    const FramePlan& plan = mPlans[frameIndex];
    if (MaxReadCount(plan.functionCode) == 0) {
        const auto number = static_cast<std::uint32_t>(plan.functionCode);
        return {Outcome::NO_ANSWER, "function code " + std::to_string(number) + " reads nothing"};
    }
    ModbusConnection::Result result = AskFor(plan);
    if (result.outcome == Outcome::ANSWERED) {
        Keep(frameIndex);
    } else if (result.outcome == Outcome::EXCEPTION) {
        mCache.SetQuality(frameIndex, QUALITY_BAD);
    }
    return result;
}

ModbusConnection::Result ModbusReader::Impl::AskFor(const FramePlan& plan) {
    mReceived.clear();
    for (const Run& run : plan.runs) {
        const std::size_t before = mReceived.size();
        mReceived.resize(before + run.count);
        const auto result = mLine.Read(plan.functionCode, run.first, run.count, mReceived.data() + before);
        if (result.outcome != Outcome::ANSWERED) {
            return result;
        }
    }
    return {Outcome::ANSWERED, {}};
}

void ModbusReader::Impl::Keep(std::uint8_t frameIndex) {
    mRegisters.clear();
    for (const std::size_t place : mPlans[frameIndex].places) {
        mRegisters.push_back(mReceived[place]);
    }
    mCache.Update(frameIndex, mRegisters, DateTime::GetRealTimeInMilliseconds());
}

ModbusReader::ModbusReader(ModbusSettings connection, const std::vector<FrameData>& frames, RegisterCache& cache)
    : mImpl(std::make_unique<Impl>(std::move(connection), frames, cache)) {}

ModbusReader::~ModbusReader() = default;

ModbusReader::Round ModbusReader::ReadAllFrames() {
    return mImpl->ReadAllFrames();
}

}  // namespace kzm::ModbusGateway
