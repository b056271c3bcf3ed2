#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/ModbusConnection.h"
#include "gateway/RegisterCache.h"

namespace kzm::ModbusGateway {

// Fills a register cache from a device over Modbus TCP or RTU. Used by one thread: the cache's one writer.
class ModbusReader {
public:
    struct FrameError {
        std::uint8_t frameIndex;
        std::string reason;  // e.g. "Illegal data address", "Connection timed out"
    };

    // What one round over the frames brought.
    struct Round {
        std::size_t framesRead = 0;
        std::vector<FrameError> errors;  // a frame that was not read, and why
        // Why the device could not be reached; empty when it was. While the pause before the next attempt lasts, the
        // reason of the last attempt.
        std::string connectionError;
    };

    // The frames and the cache must outlive the reader. Opens nothing yet.
    ModbusReader(ModbusConnection connection, const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames,
                 RegisterCache& cache);
    ~ModbusReader();
    ModbusReader(const ModbusReader&) = delete;
    ModbusReader& operator=(const ModbusReader&) = delete;

    // Reads every frame once: those that answer are put into the cache with the current time and quality Good. An
    // exception answer marks the frame Bad and keeps what was there. A frame that times out or answers wrongly stays as it
    // was, and the others are still read. A lost connection is opened again, at once for the rest of the round, then with
    // a pause that doubles with each failure to connect; rounds during the pause return at once.
    Round ReadAllFrames();

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace kzm::ModbusGateway
