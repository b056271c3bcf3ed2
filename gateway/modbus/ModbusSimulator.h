#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "DeviceProfile/FrameData.h"
#include "gateway/Export.h"
#include "gateway/cache/RegisterCache.h"

namespace kzm::ModbusGateway {

// Serves the frames of a register cache as a Modbus TCP device, to several clients at once. Answers every unit number.
// An address that is in no received frame of the asked function code is answered with the exception "illegal data
// address", a function that reads nothing with "illegal function". Registers that one frame holds all are served from
// that frame, so that they are of one instant. A client that sends no Modbus TCP, or does not take its answers, is
// disconnected.
class ModbusSimulator {
public:
    // Listens at once. `port` 0 takes a free one. The cache is one of these frames, and must outlive the simulator;
    // what it holds when a request comes is what is served. Throws std::system_error when the address cannot be
    // listened on.
    KZM_GATEWAY_EXPORT ModbusSimulator(const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames,
                                       const RegisterCache& cache, const std::string& host, std::uint16_t port);
    KZM_GATEWAY_EXPORT ~ModbusSimulator();
    ModbusSimulator(const ModbusSimulator&) = delete;
    ModbusSimulator& operator=(const ModbusSimulator&) = delete;

    // The port that is listened on.
    KZM_GATEWAY_EXPORT std::uint16_t GetPort() const;

    // Serves until `stop` becomes true (looked at every 100 ms or sooner), on the calling thread.
    KZM_GATEWAY_EXPORT void Serve(const std::atomic<bool>& stop);

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace kzm::ModbusGateway
