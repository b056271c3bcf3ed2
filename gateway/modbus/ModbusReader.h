#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/modbus/ModbusSettings.h"

namespace kzm::ModbusGateway {

// Fills the register cache of one device over Modbus TCP or RTU. Used by one thread, which is the cache's one writer.
class ModbusReader {
public:
    // A frame that was not read.
    struct FrameError {
        std::uint8_t frameIndex;  // among the frames of the reader
        std::string reason;       // for the user, e.g. "Illegal data address", "Connection timed out"
    };

    // What one round over the frames brought. Every frame is either read or among the errors.
    struct Round {
        std::size_t framesRead = 0;      // how many frames are in the cache anew
        std::vector<FrameError> errors;  // the others, each once
        // Address and reason if the device could not be reached ("192.0.2.1:502: Connection timed out"), else empty.
        // While the pause before the next attempt lasts, those of the last attempt.
        std::string connectionError;
        bool stopped = false;  // the caller's flag ended the round, and is why the last of the errors are there
    };

    // The cache is one of these frames, and must outlive the reader, and so must `stop`. Opens nothing yet. Once `stop`
    // is true, a round gives up within 50 ms; null: nothing ends a round early. Throws std::invalid_argument for
    // settings that cannot be: an empty host or device, a unit, a baud rate or a parity that does not exist.
    KZM_GATEWAY_EXPORT ModbusReader(ModbusSettings settings,
                                    const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames,
                                    RegisterCache& cache, const std::atomic<bool>* stop = nullptr);
    KZM_GATEWAY_EXPORT ~ModbusReader();
    ModbusReader(const ModbusReader&) = delete;
    ModbusReader& operator=(const ModbusReader&) = delete;

    // Reads every frame once. Frames that answer are put into the cache with the current time and quality Good. An
    // exception answer marks the frame Bad and keeps its registers. A frame that times out or is answered wrongly stays
    // as it was, and the others are still read. A lost connection is opened again at once for the rest of the round.
    // After a failure to connect, the other frames of the round are not tried, and the next attempt waits for a pause
    // that doubles with each failure; rounds during the pause return at once.
    //
    // Takes, per request, up to the time-out for an answer, and as long again to connect (TCP) or to wait for an answer
    // that comes late (RTU). Logs a warning when the device can no longer be reached, and an information when it
    // answers again.
    KZM_GATEWAY_EXPORT Round ReadAllFrames();

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace kzm::ModbusGateway
