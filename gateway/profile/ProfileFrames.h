#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

// The section "frames" of a device profile.
class ProfileFrames {
public:
    // Reads the section and reports what is wrong with it.
    explicit ProfileFrames(const JsonCursor& section);

    // The frame that holds the registers of an element: the one that it names with "frame", otherwise the only one that
    // holds them. nullopt, and reported at the element, if there is none or more than one.
    std::optional<std::uint8_t> Find(const JsonCursor& element, std::uint32_t address, std::uint32_t count) const;

    // Reports an error at the element unless function code 16 can write the frame.
    void RequireWritable(std::uint8_t index, const JsonCursor& element) const;

    void MarkUsed(std::uint8_t index) { mFrames[index].used = true; }
    // Warns of frames that were not marked as used.
    void ReportUnused() const;

    // Whether there are frames, and each has a name and registers.
    bool IsComplete() const { return mComplete; }

    // Valid if no error was reported, or the section is complete.
    std::vector<ModbusDeviceModel::DeviceProfile::FrameData> GetFrames() const;
    Names GetNames() const;

private:
    struct Frame {
        JsonCursor place;
        std::string name;
        ModbusDeviceModel::ModbusFunctionCode functionCode{};
        bool contiguous = true;
        std::vector<std::uint16_t> addresses;    // in the order of the profile; empty for a faulty frame
        std::vector<std::uint16_t> sorted = {};  // each once
        bool used = false;

        bool Holds(std::uint32_t address, std::uint32_t count) const;
        std::uint32_t DistanceTo(std::uint32_t address) const;
        std::string Describe() const;
    };

    static void ReadRange(Frame& frame);
    static void ReadList(Frame& frame);
    void Add(Frame frame);
    std::optional<std::uint8_t> FindNamed(const JsonCursor& element, std::uint32_t address, std::uint32_t count) const;
    std::string NearestTo(std::uint32_t address) const;

    std::vector<Frame> mFrames;
    bool mComplete = true;  // no frame is faulty
};

}  // namespace kzm::ModbusGateway
