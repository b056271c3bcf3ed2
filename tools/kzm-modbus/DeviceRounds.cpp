#include "DeviceRounds.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "DeviceErrors.h"
#include "StopSignal.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

ModbusReader ReaderOf(const ModbusSettings& settings, const DeviceFrames& device, RegisterCache& cache,
                      const StopSignal& stop) try {
    return ModbusReader(settings, device.frames, cache, &stop.GetFlag());
} catch (const std::invalid_argument&) {
    throw ImpossibleSettings(settings);
}

}  // namespace

void ReadRounds(const ModbusSettings& settings, const Repetition& repetition, const DeviceFrames& device,
                RegisterCache& cache, const OnRound& onRound) {
    using Clock = std::chrono::steady_clock;
    const StopSignal stop;
    ModbusReader reader = ReaderOf(settings, device, cache, stop);
    bool anyFrame = false;
    Clock::time_point next = Clock::now();
    for (std::uint64_t done = 1; std::cout; ++done) {
        const ModbusReader::Round round = reader.ReadAllFrames();
        if (round.stopped) {
            return;
        }
        anyFrame = anyFrame || round.framesRead > 0;
        onRound(round);
        if (done == repetition.count && !anyFrame) {
            throw Failure(ExitStatus::NOT_REACHED, ToText(settings) + ": no frame could be read");
        }
        next = std::max(next + repetition.interval, Clock::now());  // a slow device makes no burst afterwards
        if (done == repetition.count || stop.WaitUntil(next)) {
            return;
        }
    }
}

}  // namespace kzm::ModbusTool
