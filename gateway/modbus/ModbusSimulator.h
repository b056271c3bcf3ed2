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

// Serves the frames of a register cache as a Modbus TCP device, to several clients at once. Logs nothing.
//
// Every unit number is answered, and every request with what the cache holds when it comes. Registers that are all in
// one frame are taken from that frame, so that they are of one instant. Exceptions: "illegal function" for a function
// code that does not read, "illegal data value" for no registers or more than one request may read, "illegal data
// address" for a register that is in no received frame of that function code. A client that sends anything but Modbus
// TCP, or does not take its answers, is disconnected.
class ModbusSimulator {
public:
    // Listens at once; port 0 takes a free one. The cache is one of these frames, and must outlive the simulator; other
    // threads may write to it. Throws std::system_error if it cannot listen on that address.
    KZM_GATEWAY_EXPORT ModbusSimulator(const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames,
                                       const RegisterCache& cache, const std::string& host, std::uint16_t port);
    KZM_GATEWAY_EXPORT ~ModbusSimulator();
    ModbusSimulator(const ModbusSimulator&) = delete;
    ModbusSimulator& operator=(const ModbusSimulator&) = delete;

    // The port that it listens on. May be called by any thread.
    KZM_GATEWAY_EXPORT std::uint16_t GetPort() const;

    // Serves on the calling thread until `stop` is true, which is checked at least every 100 ms, and then disconnects
    // all clients. To be called by one thread at a time.
    KZM_GATEWAY_EXPORT void Serve(const std::atomic<bool>& stop);

private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace kzm::ModbusGateway
