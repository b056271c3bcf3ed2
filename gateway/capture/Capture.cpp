#include "gateway/capture/Capture.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

#include "gateway/cache/FrameAddresses.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/json/JsonSchema.h"
#include "gateway/json/ProblemText.h"
#include "gateway/modbus/FunctionName.h"
#include "gateway/profile/ProfileFrames.h"
#include "kzm/DateTime/DateTime.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceCache::QUALITY_BAD;
using ModbusDeviceModel::DeviceCache::QUALITY_GOOD;
using ModbusDeviceModel::DeviceCache::QUALITY_QUESTIONABLE;
using ModbusDeviceModel::DeviceProfile::FrameData;
using ModbusDeviceModel::DeviceProfile::FrameKind;

namespace {

constexpr std::size_t REGISTERS_PER_LINE = 8;
constexpr std::uint32_t ADDRESS_COUNT = 0x10000;

// The number in the `count` characters of `text` from `position`; -1 if one of them is not a digit.
int Digits(std::string_view text, std::size_t position, std::size_t count, int base = 10) {
    int number{};
    const char* begin = text.data() + position;
    const auto result = std::from_chars(begin, begin + count, number, base);
    return *begin != '-' && result.ec == std::errc() && result.ptr == begin + count ? number : -1;
}

// Milliseconds since 1970 of "2026-03-14T09:26:53.589Z".
std::optional<std::uint64_t> ParseTime(const std::string& text) {
    using namespace std::chrono;
    constexpr std::string_view SHAPE = "dddd-dd-ddTdd:dd:dd.dddZ";
    const auto fits = [](char c, char shape) { return shape == 'd' ? c >= '0' && c <= '9' : c == shape; };
    if (!std::equal(text.begin(), text.end(), SHAPE.begin(), SHAPE.end(), fits)) {
        return std::nullopt;
    }
    const year_month_day date{year(Digits(text, 0, 4)), month(static_cast<unsigned>(Digits(text, 5, 2))),
                              day(static_cast<unsigned>(Digits(text, 8, 2)))};
    const int hour = Digits(text, 11, 2);
    const int minute = Digits(text, 14, 2);
    const int second = Digits(text, 17, 2);
    if (!date.ok() || date.year() < year(1970) || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    const auto instant = sys_time<milliseconds>(sys_days(date)) + hours(hour) + minutes(minute) + seconds(second) +
                         milliseconds(Digits(text, 20, 3));
    return static_cast<std::uint64_t>(instant.time_since_epoch().count());
}

std::uint64_t ReadTime(const JsonCursor& place, std::uint64_t fallback) {
    if (place->is_null()) {
        return fallback;
    }
    const auto time = ParseTime(place.Text());
    if (!time) {
        place.Error(Cited(*place) +
                    " is not a time; allowed: date and time in UTC from 1970 on, with milliseconds, as in "
                    "\"2026-03-14T09:26:53.589Z\"");
    }
    return time.value_or(fallback);
}

bool IsBits(const FrameData& frame) {
    return frame.mFunctionCode == ModbusFunctionCode::READ_COILS ||
           frame.mFunctionCode == ModbusFunctionCode::READ_DISCRETE_INPUTS;
}

void ReadLine(const JsonCursor& line, const FrameData& frame, std::vector<std::uint16_t>& registers) {
    const std::string text = line.Text();
    for (auto begin = text.find_first_not_of(' '); begin != std::string::npos;) {
        const auto end = std::min(text.find(' ', begin), text.size());
        const int number = end - begin == 4 ? Digits(text, begin, 4, 16) : -1;
        if (number < 0 || (IsBits(frame) && number > 1)) {
            line.Error(Cited(nlohmann::json(text.substr(begin, end - begin))) +
                       " is not a register; allowed: " + (IsBits(frame) ? "0000 and 0001" : "four hexadecimal digits"));
        }
        registers.push_back(static_cast<std::uint16_t>(number));
        begin = text.find_first_not_of(' ', end);
    }
}

std::vector<std::uint16_t> ReadRegisters(const JsonCursor& list, const FrameData& frame) {
    std::vector<std::uint16_t> registers;
    list.ForEach([&](const std::string&, const JsonCursor& line) { ReadLine(line, frame, registers); });
    if (registers.size() != frame.mLength && !list->is_null()) {
        list.Error("there are " + std::to_string(registers.size()) + " registers here, but the frame has " +
                   std::to_string(frame.mLength));
    }
    return registers;
}

// The schema allows the texts of these three.
RegisterCache::Quality ReadQuality(const JsonCursor& place) {
    for (const auto quality : {QUALITY_BAD, QUALITY_QUESTIONABLE}) {
        if (place.Text() == ConvertToString(quality)) {
            return quality;
        }
    }
    return QUALITY_GOOD;
}

// The index of the frame that a snapshot names. Nothing for an unknown one, which is reported.
std::optional<std::uint8_t> ReadFrameName(const JsonCursor& name, const DeviceFrames& device) {
    const auto known = std::find(device.names.begin(), device.names.end(), name.Text());
    if (known != device.names.end()) {
        return static_cast<std::uint8_t>(known - device.names.begin());
    }
    if (!name->is_null()) {
        name.Error("the device has no frame " + Quoted(name.Text()) + Alternatives(name.Text(), device.names));
    }
    return std::nullopt;
}

Capture::Snapshot ReadSnapshot(const JsonCursor& place, const DeviceFrames& device) {
    Capture::Snapshot snapshot{ReadTime(place.At("time"), 0), {}};
    place.At("frames").ForEach([&](const std::string&, const JsonCursor& frame) {
        const JsonCursor name = frame.At("frame");
        const auto index = ReadFrameName(name, device);
        if (!index) {
            return;
        }
        if (std::any_of(snapshot.frames.begin(), snapshot.frames.end(),
                        [index](const Capture::Frame& other) { return other.frameIndex == *index; })) {
            name.Error("the frame " + Quoted(name.Text()) + " is already in this snapshot");
        }
        snapshot.frames.push_back({*index,
                                   {ReadRegisters(frame.At("registers"), device.frames.at(*index)),
                                    ReadTime(frame.At("time"), snapshot.time), ReadQuality(frame.At("quality"))}});
    });
    return snapshot;
}

// "3 registers from 10 on (holding)", "registers 7, 9 (coils)".
std::string Describe(const FrameData& frame) {
    const std::string function = " (" + std::string(NameOf(frame.mFunctionCode)) + ')';
    if (frame.mKind != FrameKind::ADDRESS_LIST) {
        return std::to_string(frame.mLength) + " registers from " + std::to_string(frame.mAddress.mAddress) + " on" +
               function;
    }
    std::string list;
    for (const std::uint16_t address : AddressesOf(frame)) {
        list += (list.empty() ? "" : ", ") + std::to_string(address);
    }
    return "registers " + list + function;
}

// Reports the first frame that the device does not have like this; true if there is none.
bool IsOf(const DeviceFrames& device, const DeviceFrames& described, const JsonCursor& section) {
    for (std::size_t i = 0; i < described.names.size(); ++i) {
        const std::string& name = described.names[i];
        const auto known = std::ranges::find(device.names, name);
        const JsonCursor place = section.At(std::to_string(i));
        if (known == device.names.end()) {
            place.Error("the profile has no frame " + Quoted(name) + Alternatives(name, device.names));
            return false;
        }
        const FrameData& own = device.frames.at(static_cast<std::size_t>(known - device.names.begin()));
        if (own.mFunctionCode != described.frames[i].mFunctionCode ||
            AddressesOf(own) != AddressesOf(described.frames[i])) {
            place.Error("the frame " + Quoted(name) + " is " + Describe(described.frames[i]) + " here, but " +
                        Describe(own) + " in the profile; use the profile that the capture was made with");
            return false;
        }
    }
    return true;
}

// The frames that the capture itself describes; none if it does not, or not without an error.
DeviceFrames ReadDescription(const JsonCursor& root) {
    DeviceFrames device{root.At("model").Text(), {}, {}};
    if (root.Has("frames")) {
        const ProfileFrames frames(root.At("frames"));
        device.names = frames.IsComplete() ? frames.GetNames() : Names{};
        device.frames = frames.IsComplete() ? frames.GetFrames() : std::vector<FrameData>{};
    }
    return device;
}

// The frames to read the snapshots with: those of a capture that describes them.
std::optional<DeviceFrames> FramesOf(const JsonCursor& root, const DeviceFrames& described) {
    if (root.Has("snapshots") && !root->contains("frames")) {
        root.Error("the capture does not describe its frames; name the profile that it was made with");
    }
    return described.names.empty() ? std::nullopt : std::optional(described);
}

// The frames to read the snapshots with; nullopt, and reported, if there are none. `found` has the cursor's problems.
std::optional<DeviceFrames> FramesFor(const JsonCursor& root, const DeviceFrames* device, const Problems& found) {
    const std::size_t before = found.size();
    const DeviceFrames described = ReadDescription(root);
    if (device == nullptr || found.size() > before) {
        return FramesOf(root, described);
    }
    const JsonCursor model = root.At("model");
    if (!model->is_null() && model.Text() != device->modelName) {
        model.Warning("the capture is of another device model; expected: " + Quoted(device->modelName));
    }
    return IsOf(*device, described, root.At("frames")) ? std::optional(*device) : std::nullopt;
}

std::vector<Capture::Missing> ReadMissing(const JsonCursor& list) {
    std::vector<Capture::Missing> missing;
    list.ForEach([&](const std::string&, const JsonCursor& place) {
        const JsonCursor function = place.At("function");
        const auto code = static_cast<ModbusFunctionCode>(function.Number().value_or(0));
        const auto first = place.At("address").Number().value_or(0);
        const auto count = place.At("count").Number().value_or(0);
        if (first + count > ADDRESS_COUNT) {
            place.At("count").Error("the registers end at " + std::to_string(first + count - 1) +
                                    "; the last register of a device is 65535");
        }
        missing.push_back({FindReadFunction(function.Text()).value_or(code), static_cast<std::uint16_t>(first),
                           static_cast<std::uint32_t>(count), *place.At("presumed") == true});
    });
    return missing;
}

Capture ReadCapture(const JsonCursor& root, const DeviceFrames* given, const Problems& found) {
    Capture capture{{}, ReadMissing(root.At("missing"))};
    const auto device = FramesFor(root, given, found);
    if (!device) {
        return capture;
    }
    root.At("snapshots").ForEach([&](const std::string&, const JsonCursor& place) {
        capture.snapshots.push_back(ReadSnapshot(place, *device));
        const std::size_t count = capture.snapshots.size();
        if (count > 1 && capture.snapshots[count - 1].time < capture.snapshots[count - 2].time && place.Has("time")) {
            place.At("time").Error("this snapshot is earlier than the one before it; sort snapshots by time");
        }
    });
    capture.frames = *device;
    return capture;
}

// `device`: null where the capture's own description is to be used.
Capture ParseFor(std::string_view text, const DeviceFrames* device, Problems& problems) {
    static const JsonSchema SCHEMA(Capture::GetSchema());
    Problems found;
    Capture capture;
    const LocatedJson document = LocatedJson::Parse(text, found);
    if (document.IsRead()) {
        const nlohmann::json content = SCHEMA.Check(document, found);
        capture = ReadCapture(JsonCursor(document, content, found), device, found);
    }
    SortByLine(found);
    problems.insert(problems.end(), found.begin(), found.end());
    return HasError(found) ? Capture{} : capture;
}

std::vector<std::string> LinesOf(const std::vector<std::uint16_t>& registers) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < registers.size(); ++i) {
        char word[8];
        std::snprintf(word, sizeof word, "%04X", static_cast<unsigned>(registers[i]));
        if (i % REGISTERS_PER_LINE == 0) {
            lines.emplace_back(word);
        } else {
            lines.back() += ' ' + std::string(word);
        }
    }
    return lines;
}

nlohmann::ordered_json Written(const FrameData& frame, const std::string& name) {
    nlohmann::ordered_json text{{"name", name}, {"function", NameOf(frame.mFunctionCode)}};
    if (frame.mKind == FrameKind::ADDRESS_LIST) {
        text["addresses"] = AddressesOf(frame);
    } else {
        text["address"] = frame.mAddress.mAddress;
        text["count"] = frame.mLength;
    }
    return text;
}

nlohmann::ordered_json Written(const Capture::Missing& missing) {
    nlohmann::ordered_json text{
        {"function", NameOf(missing.functionCode)}, {"address", missing.first}, {"count", missing.count}};
    if (missing.presumed) {
        text["presumed"] = true;
    }
    return text;
}

nlohmann::ordered_json Written(const Capture::Frame& frame, std::uint64_t snapshotTime, const DeviceFrames& device) {
    nlohmann::ordered_json text{{"frame", device.names.at(frame.frameIndex)}};
    if (frame.content.timestamp != snapshotTime) {
        text["time"] = kzm::DateTime::DateTime::ConvertToCalendarTime(frame.content.timestamp);
    }
    if (frame.content.quality != QUALITY_GOOD) {
        text["quality"] = ConvertToString(frame.content.quality);
    }
    text["registers"] = LinesOf(frame.content.registers);
    return text;
}

}  // namespace

Capture Capture::Parse(std::string_view text, const DeviceFrames& device, Problems& problems) {
    return ParseFor(text, &device, problems);
}

Capture Capture::Parse(std::string_view text, Problems& problems) {
    return ParseFor(text, nullptr, problems);
}

Capture::Snapshot Capture::Take(const RegisterCache& cache, const DeviceFrames& device, std::uint64_t time) {
    Snapshot snapshot{time, {}};
    for (std::size_t i = 0; i < device.names.size(); ++i) {
        const auto index = static_cast<std::uint8_t>(i);
        RegisterCache::Frame frame = cache.GetFrame(index);
        if (!frame.registers.empty()) {
            snapshot.time = std::max(snapshot.time, frame.timestamp);
            snapshot.frames.push_back({index, std::move(frame)});
        }
    }
    return snapshot;
}

std::string Capture::Write(const DeviceFrames& device) const {
    nlohmann::ordered_json text;
    if (!device.modelName.empty()) {
        text["model"] = device.modelName;
    }
    for (std::size_t i = 0; i < device.names.size(); ++i) {
        text["frames"].push_back(Written(device.frames.at(i), device.names[i]));
    }
    for (const Missing& range : missing) {
        text["missing"].push_back(Written(range));
    }
    text["snapshots"] = nlohmann::ordered_json::array();
    for (const auto& snapshot : snapshots) {
        auto received = nlohmann::ordered_json::array();
        for (const auto& frame : snapshot.frames) {
            received.push_back(Written(frame, snapshot.time, device));
        }
        text["snapshots"].push_back(
            {{"time", kzm::DateTime::DateTime::ConvertToCalendarTime(snapshot.time)}, {"frames", std::move(received)}});
    }
    return text.dump(4) + '\n';
}

void Capture::Restore(const Snapshot& snapshot, RegisterCache& cache) {
    for (const auto& frame : snapshot.frames) {
        cache.Update(frame.frameIndex, frame.content.registers, frame.content.timestamp, frame.content.quality);
    }
}

}  // namespace kzm::ModbusGateway
