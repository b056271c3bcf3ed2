// Reads a capture, as one made with a small profile and by its own description, and writes it again.
#include <algorithm>

#include "fuzz/Input.h"
#include "fuzz/JsonMutator.h"
#include "gateway/capture/Capture.h"
#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusGateway;

constexpr const char* PROFILE = R"({
    "device": {"model": "Meter"},
    "frames": [{"name": "a", "function": "holding", "address": 10, "count": 3},
               {"name": "b", "function": "coils", "addresses": [7, 9]}],
    "objects": [{"name": "Measurement.RmsVoltage", "value": {"address": 10, "type": "uint16"}},
                {"name": "Measurement.State", "value": {"address": 7, "type": "boolean", "frame": "b"}}]})";

const LoadedProfile& Profile() {
    static const auto LOADED = ProfileLoader::Load(PROFILE);
    Require(LOADED.profile != nullptr, "the profile can be read");
    return *LOADED.profile;
}

void RequireGoodSnapshot(const Capture::Snapshot& snapshot, std::uint64_t& last) {
    Require(snapshot.time >= last, "snapshots stand in the order of time");
    last = snapshot.time;
    const auto& frames = Profile().model->GetFrames();
    for (const auto& frame : snapshot.frames) {
        Require(frame.content.registers.size() == frames.at(frame.frameIndex).mLength, "a frame has its registers");
    }
    RegisterCache cache(frames);
    Capture::Restore(snapshot, cache);
    const auto taken = Capture::Take(cache, Profile().GetDeviceFrames(), snapshot.time);
    Require(taken.frames.size() == snapshot.frames.size(), "a cache holds what was put into it");
}

void WriteAndRead(const Capture& capture) {
    const std::string text = capture.Write(Profile().GetDeviceFrames());
    Problems problems;
    const Capture again = Capture::Parse(text, Profile().GetDeviceFrames(), problems);
    Require(problems.empty() && again.snapshots.size() == capture.snapshots.size(), "what was written can be read");
    Require(again.Write(Profile().GetDeviceFrames()) == text, "what was read is written the same");
}

void ReadByItsDescription(std::string_view text) {
    Problems problems;
    const Capture capture = Capture::Parse(text, problems);
    Require(HasError(problems) == capture.snapshots.empty(), "there are snapshots, or an error");
    if (!capture.snapshots.empty()) {
        const std::string written = capture.Write(capture.frames);
        const Capture again = Capture::Parse(written, problems);
        Require(again.Write(again.frames) == written, "what was read is written the same");
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    const Input catchesLog(nullptr, 0);
    Problems problems;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const Capture capture = Capture::Parse(text, Profile().GetDeviceFrames(), problems);
    Require(HasError(problems) == capture.snapshots.empty(), "there are snapshots, or an error");
    std::uint64_t last = 0;
    for (const auto& snapshot : capture.snapshots) {
        RequireGoodSnapshot(snapshot, last);
    }
    if (!capture.snapshots.empty()) {
        WriteAndRead(capture);
    }
    ReadByItsDescription(text);
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    return kzm::ModbusFuzz::JsonMutator(seed).Mutate(data, size, maxSize);
}
