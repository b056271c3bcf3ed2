#include "gateway/diagnosis/RegisterRuns.h"

#include <map>
#include <optional>
#include <utility>

#include "gateway/cache/FrameAddresses.h"

namespace kzm::ModbusGateway {

namespace {

using Place = std::pair<std::uint8_t, std::uint16_t>;  // function and address

struct Register {
    std::vector<std::optional<std::uint16_t>> words;  // one per snapshot
    bool isFrameStart = false;

    void FillGaps();
};
using Registers = std::map<Place, Register>;

void Register::FillGaps() {
    for (std::size_t i = 1; i < words.size(); ++i) {
        words[i] = words[i] ? words[i] : words[i - 1];
    }
    for (std::size_t i = words.size() - 1; i > 0; --i) {
        words[i - 1] = words[i - 1] ? words[i - 1] : words[i];
    }
}

std::vector<const Capture::Snapshot*> Chosen(const std::vector<Capture::Snapshot>& snapshots) {
    std::vector<const Capture::Snapshot*> chosen;
    const std::size_t count = std::min(snapshots.size(), RegisterRuns::MAX_SNAPSHOTS);
    for (std::size_t i = 0; i < count; ++i) {
        chosen.push_back(&snapshots[count == 1 ? 0 : i * (snapshots.size() - 1) / (count - 1)]);
    }
    return chosen;
}

void AddFrame(const ModbusDeviceModel::DeviceProfile::FrameData& frame, const RegisterCache::Frame& content,
              std::size_t snapshot, std::size_t snapshots, Registers& registers) {
    const auto addresses = AddressesOf(frame);
    for (std::size_t i = 0; i < addresses.size() && i < content.registers.size(); ++i) {
        Register& place = registers[{static_cast<std::uint8_t>(frame.mFunctionCode), addresses[i]}];
        place.words.resize(snapshots);
        place.words[snapshot] = content.registers[i];
        place.isFrameStart = place.isFrameStart || i == 0;
    }
}

RegisterRun& RunOf(const Place& place, std::size_t snapshots, std::vector<RegisterRun>& runs) {
    const auto& [function, address] = place;
    if (runs.empty() || runs.back().function != function || runs.back().address + runs.back().GetSize() != address) {
        runs.push_back({function, address, {}, std::vector<std::vector<std::uint16_t>>(snapshots)});
    }
    return runs.back();
}

}  // namespace

RegisterRuns RegisterRuns::Of(const DeviceFrames& device, const std::vector<Capture::Snapshot>& snapshots) {
    const auto chosen = Chosen(snapshots);
    RegisterRuns result;
    Registers registers;
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        result.times.push_back(chosen[i]->time);
        for (const Capture::Frame& frame : chosen[i]->frames) {
            if (frame.content.quality != ModbusDeviceModel::DeviceCache::QUALITY_BAD) {
                AddFrame(device.frames.at(frame.frameIndex), frame.content, i, chosen.size(), registers);
            }
        }
    }
    for (auto& [place, held] : registers) {
        held.FillGaps();
        RegisterRun& run = RunOf(place, chosen.size(), result.runs);
        run.isFrameStart.push_back(held.isFrameStart);
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            run.snapshots[i].push_back(*held.words[i]);
        }
    }
    return result;
}

}  // namespace kzm::ModbusGateway
