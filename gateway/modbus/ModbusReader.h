#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/modbus/ModbusSettings.h"

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
        std::vector<FrameError> errors;  // every frame that was not read, and why
        // Why the device could not be reached; empty when it was. While the pause before the next attempt lasts, the
        // reason of the last attempt.
        std::string connectionError;
    };

    // The cache is one of these frames, and must outlive the reader. Opens nothing yet. Throws std::invalid_argument
    // for a connection that cannot be: an empty host or device, a unit, a baud rate or a parity that does not exist.
    KZM_GATEWAY_EXPORT ModbusReader(ModbusSettings connection,
                                    const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames,
                                    RegisterCache& cache);
    KZM_GATEWAY_EXPORT ~ModbusReader();
    ModbusReader(const ModbusReader&) = delete;
    ModbusReader& operator=(const ModbusReader&) = delete;

    // Reads every frame once: those that answer are put into the cache with the current time and quality Good. An
    // exception answer marks the frame Bad and keeps what was there. A frame that times out or answers wrongly stays as
    // it was, and the others are still read. A lost connection is opened again, at once for the rest of the round;
    // after a failure to connect the others of the round are not tried, and the next attempt waits for a pause that
    // doubles with each failure; rounds during the pause return at once.
    //
    // Takes, per frame, up to the time-out for an answer, and as long again to connect (TCP) or to wait for an answer
    // that comes late (RTU). Logs one warning when the device can no longer be reached, and one line when it answers
    // again.
    KZM_GATEWAY_EXPORT Round ReadAllFrames();

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace kzm::ModbusGateway
