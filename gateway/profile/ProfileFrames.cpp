#include "gateway/profile/ProfileFrames.h"

#include <algorithm>

#include "gateway/modbus/FunctionName.h"
#include "gateway/modbus/RequestLimits.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ModbusFunctionCode;
using ModbusDeviceModel::DeviceProfile::FrameData;

namespace {

constexpr std::uint32_t ADDRESS_COUNT = 0x10000;

ModbusFunctionCode FunctionCodeOf(const JsonCursor& function) {
    if (const auto number = function.Number()) {
        return static_cast<ModbusFunctionCode>(*number);
    }
    return FindReadFunction(function.Text()).value_or(ModbusFunctionCode{});
}

std::string Range(std::uint32_t address, std::uint32_t count) {
    return std::to_string(address) + (count == 1 ? "" : " to " + std::to_string(address + count - 1));
}

std::string Registers(std::uint32_t address, std::uint32_t count) {
    return (count == 1 ? "register " : "registers ") + Range(address, count);
}

}  // namespace

ProfileFrames::ProfileFrames(const JsonCursor& section) {
    mComplete = !section->empty();
    section.ForEach([this](const std::string&, const JsonCursor& place) {
        Frame frame{place, place.At("name").Text(), FunctionCodeOf(place.At("function")), !place.Has("addresses"), {}};
        if (frame.contiguous) {
            ReadRange(frame);
        } else {
            ReadList(frame);
        }
        mComplete = mComplete && !frame.name.empty() && !frame.addresses.empty();
        Add(std::move(frame));
    });
}

// The registers of a frame whose name is taken go to the first of that name, so that no further error follows from it.
void ProfileFrames::Add(Frame frame) {
    const auto addresses = frame.addresses;
    auto known = std::ranges::find(mFrames, frame.name, &Frame::name);
    if (known != mFrames.end() && !frame.name.empty()) {
        frame.place.At("name").Error("another frame already has the name " + Quoted(frame.name));
    } else {
        known = mFrames.insert(mFrames.end(), std::move(frame));
    }
    auto& sorted = known->sorted;
    sorted.insert(sorted.end(), addresses.begin(), addresses.end());
    std::ranges::sort(sorted);
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
}

void ProfileFrames::ReadRange(Frame& frame) {
    const auto address = frame.place.At("address").Number();
    const auto count = frame.place.At("count").Number();
    if (!address || !count) {
        return;
    }
    const std::uint16_t most = MaxReadCount(frame.functionCode);
    if (frame.place.Has("function") && *count > most) {
        frame.place.At("count").Error(std::to_string(*count) + " are too many; one request of function code " +
                                      std::to_string(static_cast<std::uint32_t>(frame.functionCode)) +
                                      " reads at most " + std::to_string(most));
    }
    if (*address + *count > ADDRESS_COUNT) {
        frame.place.At("count").Error("the frame ends at register " + std::to_string(*address + *count - 1) +
                                      "; the last register of a device is 65535");
    }
    for (std::uint64_t i = *address; i < std::min<std::uint64_t>(*address + *count, ADDRESS_COUNT); ++i) {
        frame.addresses.push_back(static_cast<std::uint16_t>(i));
    }
}

void ProfileFrames::ReadList(Frame& frame) {
    if (frame.place.Has("address") || frame.place.Has("count")) {
        frame.place.At("addresses").Error("a frame has either \"address\" and \"count\" or \"addresses\", not both");
    }
    frame.place.At("addresses").ForEach([&frame](const std::string&, const JsonCursor& item) {
        const auto address = item.Number();
        if (!address) {
            return;
        }
        if (std::count(frame.addresses.begin(), frame.addresses.end(), *address) != 0) {
            item.Error("register " + std::to_string(*address) + " is already in this list");
        }
        frame.addresses.push_back(static_cast<std::uint16_t>(*address));
    });
}

bool ProfileFrames::Frame::Holds(std::uint32_t address, std::uint32_t count) const {
    const auto first = std::lower_bound(sorted.begin(), sorted.end(), address);
    return sorted.end() - first >= static_cast<std::ptrdiff_t>(count) && *first == address &&
           first[static_cast<std::ptrdiff_t>(count) - 1] == address + count - 1;
}

std::uint32_t ProfileFrames::Frame::DistanceTo(std::uint32_t address) const {
    const std::uint32_t nearest = std::clamp<std::uint32_t>(address, sorted.front(), sorted.back());
    return std::max(address, nearest) - std::min(address, nearest);
}

std::string ProfileFrames::Frame::Describe() const {
    const std::uint32_t first = sorted.front();
    return Quoted(name) + " (" + (contiguous ? "" : std::to_string(sorted.size()) + " of ") +
           Range(first, sorted.back() - first + 1) + ')';
}

std::optional<std::uint8_t> ProfileFrames::Find(const JsonCursor& element, std::uint32_t address,
                                                std::uint32_t count) const {
    if (element.Has("frame")) {
        return FindNamed(element, address, count);
    }
    Names holders;
    std::size_t holder = 0;
    for (std::size_t i = 0; i < mFrames.size(); ++i) {
        if (mFrames[i].Holds(address, count)) {
            holders.push_back(mFrames[i].name);
            holder = i;
        }
    }
    if (holders.size() == 1) {
        return static_cast<std::uint8_t>(holder);
    }
    if (!holders.empty()) {
        element.Error("several frames hold " + Registers(address, count) +
                      "; choose one with \"frame\": " + ListOf(holders));
    } else if (mComplete) {
        element.At("address").Error("no frame holds " + Registers(address, count) + "; nearest: " + NearestTo(address));
    }
    return std::nullopt;
}

std::optional<std::uint8_t> ProfileFrames::FindNamed(const JsonCursor& element, std::uint32_t address,
                                                     std::uint32_t count) const {
    const std::string name = element.At("frame").Text();
    const auto frame =
        std::find_if(mFrames.begin(), mFrames.end(), [&name](const Frame& known) { return known.name == name; });
    if (frame == mFrames.end()) {
        if (mComplete) {
            element.At("frame").Error("there is no frame " + Quoted(name) + Alternatives(name, GetNames()));
        }
        return std::nullopt;
    }
    if (!frame->addresses.empty() && !frame->Holds(address, count)) {
        element.At("address").Error("the frame " + frame->Describe() + " does not hold " + Registers(address, count));
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(frame - mFrames.begin());
}

std::string ProfileFrames::NearestTo(std::uint32_t address) const {
    std::vector<const Frame*> frames;
    for (const auto& frame : mFrames) {
        frames.push_back(&frame);
    }
    std::stable_sort(frames.begin(), frames.end(), [address](const Frame* left, const Frame* right) {
        return left->DistanceTo(address) < right->DistanceTo(address);
    });
    return frames.front()->Describe() + (frames.size() > 1 ? ", " + frames[1]->Describe() : "");
}

void ProfileFrames::RequireWritable(std::uint8_t index, const JsonCursor& element) const {
    const Frame& frame = mFrames[index];
    const auto refuse = [&](const std::string& reason) {
        element.Error("the frame " + frame.Describe() + " cannot be written: " + reason);
    };
    if (frame.functionCode != ModbusFunctionCode::READ_HOLDING_REGISTERS) {
        refuse("only holding registers can be");
    } else if (!frame.contiguous) {
        refuse("a list of registers takes more than one request");
    } else if (frame.addresses.size() > MAX_WRITE_COUNT) {
        refuse("one request of function code 16 writes at most " + std::to_string(MAX_WRITE_COUNT) + " registers");
    }
}

void ProfileFrames::ReportUnused() const {
    for (const auto& frame : mFrames) {
        if (!frame.used) {
            frame.place.Warning("no object uses the frame " + Quoted(frame.name));
        }
    }
}

std::vector<FrameData> ProfileFrames::GetFrames() const {
    std::vector<FrameData> frames;
    for (const auto& frame : mFrames) {
        const auto length = static_cast<std::uint16_t>(frame.addresses.size());
        if (frame.contiguous) {
            frames.emplace_back(frame.functionCode, false, std::int16_t{0}, length, frame.addresses.front());
        } else {
            frames.emplace_back(frame.functionCode, false, std::int16_t{0}, length, frame.addresses);
        }
    }
    return frames;
}

Names ProfileFrames::GetNames() const {
    Names names;
    for (const auto& frame : mFrames) {
        names.push_back(frame.name);
    }
    return names;
}

}  // namespace kzm::ModbusGateway
