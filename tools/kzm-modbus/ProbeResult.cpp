#include "ProbeResult.h"

#include <algorithm>

#include "TextTable.h"
#include "gateway/cache/FrameAddresses.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DeviceProfile::FrameData;
using State = RegisterProbe::State;

namespace {

std::string Describe(const RegisterProbe::Register& what) {
    switch (what.state) {
        case State::ANSWERED:
            return "answer";
        case State::REFUSED:
            return what.exception == 0 ? "refused" : "refused with exception " + std::to_string(what.exception);
        case State::SILENT:
            return "no answer";
        case State::NOT_ASKED:
            return "taken for missing";
        case State::UNKNOWN:
            break;
    }
    return "not asked yet";
}

}  // namespace

void ProbeResult::Take(const Capture& capture) {
    for (const Capture::Missing& missing : capture.missing) {
        for (std::uint32_t i = 0; missing.functionCode == mFunctionCode && i < missing.count; ++i) {
            mRegisters[static_cast<std::uint16_t>(missing.first + i)] = {missing.presumed ? State::NOT_ASKED
                                                                                          : State::REFUSED};
        }
    }
    for (const Capture::Snapshot& snapshot : capture.snapshots) {
        for (const Capture::Frame& frame : snapshot.frames) {
            TakeFrame(capture.frames.frames.at(frame.frameIndex), frame.content.registers);
        }
    }
}

void ProbeResult::TakeFrame(const FrameData& frame, const std::vector<std::uint16_t>& words) {
    const auto addresses = AddressesOf(frame);
    if (frame.mFunctionCode != mFunctionCode || addresses.empty()) {
        return;
    }
    const auto before = mRegisters.find(static_cast<std::uint16_t>(addresses.front() - 1));
    if (before != mRegisters.end() && before->second.state == State::ANSWERED) {
        mMost = std::min(mMost, mLastCount);
    }
    mLastCount = static_cast<std::uint16_t>(addresses.size());
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        mRegisters[addresses[i]] = {State::ANSWERED, words.at(i)};
    }
}

void ProbeResult::Take(const RegisterProbe& probe, std::uint16_t first) {
    std::uint32_t address = first;
    for (const Register& each : probe.GetRegisters()) {
        if (each.state != State::UNKNOWN) {
            mRegisters[static_cast<std::uint16_t>(address)] = each;
        }
        ++address;
    }
}

void ProbeResult::TellTo(RegisterProbe& probe) const {
    for (const auto& [address, known] : mRegisters) {
        probe.Know(address, known);
    }
}

bool ProbeResult::HasRegisters() const {
    return std::ranges::any_of(mRegisters, [](const auto& each) { return each.second.state == State::ANSWERED; });
}

std::size_t ProbeResult::CountNotAsked() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(mRegisters, [](const auto& each) { return each.second.state == State::NOT_ASKED; }));
}

// What was not asked for is missing for the reason of its neighbours.
bool ProbeResult::Continues(const Run& run, const Register& what) {
    if (run.what.state == State::ANSWERED || what.state == State::ANSWERED) {
        return run.what.state == what.state;
    }
    return run.what.state == State::NOT_ASKED || what.state == State::NOT_ASKED ||
           (run.what.state == what.state && run.what.exception == what.exception);
}

std::vector<ProbeResult::Run> ProbeResult::GetRuns() const {
    std::vector<Run> runs;
    for (const auto& [address, what] : mRegisters) {
        if (runs.empty() || runs.back().range.last + 1 != address || !Continues(runs.back(), what)) {
            runs.push_back({{mFunctionCode, address, address}, what, 0});
        }
        Run& run = runs.back();
        run.range.last = address;
        run.what = what.state == State::NOT_ASKED ? run.what : what;
        run.notAsked += what.state == State::NOT_ASKED ? 1 : 0;
    }
    return runs;
}

void ProbeResult::Print() const {
    std::vector<Row> rows{HeadingRow({"FIRST", "LAST", "COUNT", ""})};
    for (const auto& [range, what, notAsked] : GetRuns()) {
        const Style style = what.state == State::ANSWERED ? Style::PLAIN : Style::FAINT;
        Row row;
        for (const int number : {int{range.first}, int{range.last}, range.last - range.first + 1}) {
            row.push_back({std::to_string(number), style, /*rightAligned=*/true});
        }
        const std::string note = notAsked == 0 ? "" : ", " + std::to_string(notAsked) + " not asked one by one";
        row.push_back({Describe(what) + note, style});
        rows.push_back(std::move(row));
    }
    PrintTable(rows);
}

DeviceFrames ProbeResult::GetFrames(std::uint16_t most) const {
    std::vector<RegisterRange> ranges;
    for (const Run& run : GetRuns()) {
        if (run.what.state == State::ANSWERED) {
            ranges.push_back(run.range);
        }
    }
    return FramesOf(ranges, most);
}

Capture ProbeResult::MakeCapture(const DeviceFrames& frames) const {
    const std::uint64_t now = DateTime::DateTime::GetRealTimeInMilliseconds();
    RegisterCache cache(frames.frames);
    for (std::size_t index = 0; index < frames.frames.size(); ++index) {
        std::vector<std::uint16_t> words;
        for (const std::uint16_t address : AddressesOf(frames.frames[index])) {
            words.push_back(mRegisters.at(address).value);
        }
        cache.Update(static_cast<std::uint8_t>(index), words, now);
    }
    Capture capture;
    capture.snapshots.push_back(Capture::Take(cache, frames, now));
    for (const auto& [range, what, notAsked] : GetRuns()) {
        if (what.state != State::ANSWERED) {
            capture.missing.push_back({mFunctionCode, range.first, range.last - range.first + 1U,
                                       /*presumed=*/notAsked != 0});
        }
    }
    return capture;
}

}  // namespace kzm::ModbusTool
