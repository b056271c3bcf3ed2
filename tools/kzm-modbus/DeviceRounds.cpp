#include "DeviceRounds.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "StopSignal.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

ModbusReader ReaderOf(const ModbusSettings& connection, const LoadedProfile& profile, RegisterCache& cache) try {
    return ModbusReader(connection, profile.model->GetFrames(), cache);
} catch (const std::invalid_argument&) {
    throw NoSuchLine(connection);
}

}  // namespace

Failure NoSuchLine(const ModbusSettings& connection) {
    return {ExitStatus::WRONG_USAGE, ToText(connection) + ": the line has no such unit, or no such baud rate"};
}

ExitStatus ReadRounds(const ModbusSettings& connection, const Repetition& repetition, const LoadedProfile& profile,
                      RegisterCache& cache, const OnRound& onRound) {
    using Clock = std::chrono::steady_clock;
    const StopSignal stop;
    ModbusReader reader = ReaderOf(connection, profile, cache);
    bool anyFrame = false;
    Clock::time_point next = Clock::now();
    for (std::uint64_t done = 1; std::cout; ++done) {
        const ModbusReader::Round round = reader.ReadAllFrames();
        anyFrame = anyFrame || round.framesRead > 0;
        onRound(round);
        if (done == repetition.count) {
            return anyFrame || stop.GetFlag() ? ExitStatus::OK : ExitStatus::NOT_REACHED;
        }
        next = std::max(next + repetition.interval, Clock::now());  // a slow device makes no burst afterwards
        if (stop.WaitUntil(next)) {
            break;
        }
    }
    return ExitStatus::OK;
}

std::vector<std::string> DescribeErrors(const ModbusReader::Round& round, const LoadedProfile& profile) {
    if (!round.connectionError.empty()) {
        return {"no connection: " + round.connectionError};
    }
    std::vector<std::string> lines;
    for (const ModbusReader::FrameError& error : round.errors) {
        lines.push_back("frame " + profile.frameNames.at(error.frameIndex) + ": " + error.reason);
    }
    return lines;
}

void ErrorReport::Report(const std::vector<std::string>& errors) {
    if (errors == mLast) {
        return;
    }
    mLast = errors;
    for (const std::string& error : errors) {
        std::cerr << "kzm-modbus: " << Printable(error) << '\n';
    }
    if (errors.empty()) {
        std::cerr << "kzm-modbus: all frames are read again\n";
    }
    std::cerr.flush();
}

}  // namespace kzm::ModbusTool
