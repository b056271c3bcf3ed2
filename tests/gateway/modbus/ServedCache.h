#pragma once

#include <atomic>
#include <thread>
#include <vector>

#include "gateway/modbus/ModbusSimulator.h"

namespace kzm::ModbusGateway {

// A cache that a simulator serves on loopback, for the life of this object.
struct ServedCache {
    explicit ServedCache(const std::vector<ModbusDeviceModel::DeviceProfile::FrameData>& frames)
        : cache(frames), simulator(frames, cache, "127.0.0.1", 0), thread([this] { simulator.Serve(stop); }) {}
    ~ServedCache() {
        stop = true;
        thread.join();
    }
    std::uint16_t GetPort() const { return simulator.GetPort(); }

    RegisterCache cache;
    ModbusSimulator simulator;
    std::atomic<bool> stop = false;
    std::thread thread;
};

}  // namespace kzm::ModbusGateway
