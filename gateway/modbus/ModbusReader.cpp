#include "gateway/modbus/ModbusReader.h"

#include <string>
#include <utility>

#include "gateway/modbus/FrameRequests.h"
#include "gateway/modbus/ModbusConnection.h"
#include "gateway/modbus/RequestLimits.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusGateway {

using DateTime::DateTime;
using ModbusDeviceModel::DeviceCache::QUALITY_BAD;
using ModbusDeviceModel::DeviceProfile::FrameData;

class ModbusReader::Impl {
public:
    Impl(ModbusSettings settings, const std::vector<FrameData>& frames, RegisterCache& cache,
         const std::atomic<bool>* stop)
        : mConnection(std::move(settings), stop), mFrames(frames.begin(), frames.end()), mCache(cache) {}

    Round ReadAllFrames();

private:
    using Outcome = ModbusConnection::Outcome;
    using Result = ModbusConnection::Result;

    Result ReadFrame(std::uint8_t frameIndex);
    Result Ask(const FrameRequests& frame);
    void Keep(std::uint8_t frameIndex);

    ModbusConnection mConnection;
    std::vector<FrameRequests> mFrames;
    RegisterCache& mCache;
    std::vector<std::uint16_t> mReceived;  // of the ranges of the frame that is being read
    std::vector<std::uint16_t> mRegisters;
};

ModbusReader::Round ModbusReader::Impl::ReadAllFrames() {
    Round round;
    Result result{Outcome::ANSWERED, {}};
    for (std::size_t index = 0; index < mFrames.size(); ++index) {
        const auto frameIndex = static_cast<std::uint8_t>(index);
        if (result.outcome != Outcome::UNREACHABLE && result.outcome != Outcome::STOPPED) {
            result = ReadFrame(frameIndex);
        }
        if (result.outcome == Outcome::ANSWERED) {
            ++round.framesRead;
        } else {
            round.errors.push_back({frameIndex, result.reason});
        }
    }
    round.stopped = result.outcome == Outcome::STOPPED;
    if (result.outcome == Outcome::UNREACHABLE) {
        round.connectionError = mConnection.GetName() + ": " + result.reason;
    }
    return round;
}

ModbusConnection::Result ModbusReader::Impl::ReadFrame(std::uint8_t frameIndex) {
    const FrameRequests& frame = mFrames[frameIndex];
    if (MaxReadCount(frame.functionCode) == 0) {
        const auto number = static_cast<std::uint32_t>(frame.functionCode);
        return {Outcome::NO_ANSWER, "function code " + std::to_string(number) + " reads nothing"};
    }
    Result result = Ask(frame);
    if (result.outcome == Outcome::ANSWERED) {
        Keep(frameIndex);
    } else if (result.outcome == Outcome::EXCEPTION) {
        mCache.SetQuality(frameIndex, QUALITY_BAD, result.exception);
    }
    return result;
}

ModbusConnection::Result ModbusReader::Impl::Ask(const FrameRequests& frame) {
    mReceived.clear();
    for (const auto& [first, count] : frame.ranges) {
        const std::size_t before = mReceived.size();
        mReceived.resize(before + count);
        Result result = mConnection.Read(frame.functionCode, first, count, mReceived.data() + before);
        if (result.outcome != Outcome::ANSWERED) {
            return result;
        }
    }
    return {Outcome::ANSWERED, {}};
}

void ModbusReader::Impl::Keep(std::uint8_t frameIndex) {
    mRegisters.clear();
    for (const std::size_t place : mFrames[frameIndex].places) {
        mRegisters.push_back(mReceived[place]);
    }
    mCache.Update(frameIndex, mRegisters, DateTime::GetRealTimeInMilliseconds());
}

ModbusReader::ModbusReader(ModbusSettings settings, const std::vector<FrameData>& frames, RegisterCache& cache,
                           const std::atomic<bool>* stop)
    : mImpl(std::make_unique<Impl>(std::move(settings), frames, cache, stop)) {}

ModbusReader::~ModbusReader() = default;

ModbusReader::Round ModbusReader::ReadAllFrames() {
    return mImpl->ReadAllFrames();
}

}  // namespace kzm::ModbusGateway
